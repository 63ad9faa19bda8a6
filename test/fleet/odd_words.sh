#!/bin/sh
# Part of script/fleet-test: runs with odd names and words.

# Blanks, quotes and worse in whatever may hold them. The login is given by options of ansible-playbook.
odd_inventory() {
    cat <<INVENTORY
varn_servers:
  hosts:
    "../rack 1, \"\\xfc\"":
      ansible_host: $(address_of 1)
      ansible_port: $PORT
  vars:
    ansible_become: true
    varn_firmware_entry: Forced Normal Flash of 2nd
    varn_firmware_success: "Done\\\\. .*[\"]"
    varn_firmware_parent: /opt/it's here
    varn_firmware_package_tool: $PACKAGE_TOOL
    varn_firmware_report: $WORK/report/of "all"
INVENTORY
}

odd_play() {
    play odd fleet/flash.yml odd-inventory 'a folder: good/package' -u operator --private-key "$WORK/a key" \
        --ssh-common-args="-F none -o UserKnownHostsFile=$WORK/known_hosts"
}

# odd_row_is OUTCOME LINE: a spreadsheet shows the line and calculates nothing.
odd_row_is() {
    python3 - "$WORK/report/of \"all\"/latest" "$@" <<'PYTHON'
import csv, json, sys
folder, outcome, line = sys.argv[1:]
row, = json.load(open(folder + "/report.json"))
cells, = csv.DictReader(open(folder + "/report.csv", encoding="utf-8"))
sys.exit([row["server"], row["outcome"], row["line"]] != ['../rack 1, "\xfc"', outcome, line]
         or [cells["server"], cells["outcome"]] != [row["server"], outcome]
         or cells["line"] != ("'" if line.startswith("=") else "") + line)
PYTHON
}

test_odd_words() {
    prepare 1 odd
    mkdir -p "$WORK/server1/opt/it's here"
    mkdir "$WORK/a folder: good"
    cp "$WORK/package.tar" "$WORK/package.tar.sha256" "$WORK/a folder: good"
    odd_inventory >"$WORK/odd-inventory"

    check 'options of ansible-playbook and odd words work' odd_play
    check 'what the core program says is kept as it is' odd_row_is flashed \
        '=1+2 Done. "a", b; {{ 6 * 7 }} '"$(printf '\303\274')"
    check 'its controller is flashed' is_flashed 1
    check 'the log is in the folder of the report' \
        [ -s "$WORK/report/of \"all\"/latest/..%2Frack%201%2C%20%22%C3%BC%22.log" ]
}
