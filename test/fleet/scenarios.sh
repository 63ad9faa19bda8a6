#!/bin/sh
# Part of script/fleet-test: the runs, in this order. Each function says what it expects of one of them.

test_bad_packages() {
    # shellcheck disable=SC2046 # a list of words
    inventory $(each_server) >"$WORK/inventory"
    check 'a damaged archive ends the run' fails play damaged fleet/flash.yml inventory damaged
    check 'it is told why' grep -q 'No server has been touched' "$WORK/damaged.log"
    check 'a signature by a stranger ends the run' \
        fails play forged fleet/flash.yml inventory forged
    check 'it is told why' grep -q 'No server has been touched' "$WORK/forged.log"
    check 'nobody has connected to any server' unheard
}

test_check_mode() {
    check 'check mode comes to its end' \
        play check-mode fleet/flash.yml inventory package --check --diff --limit server1
    check 'it says what would be done' grep -q 'server1: checked' "$WORK/check-mode.log"
    check 'it changes no server' all_are_untouched
    check 'it writes no report' [ ! -e "$WORK/report" ]
}

test_sick_canary() {
    # shellcheck disable=SC2046 # a list of words
    inventory 2 1 $(seq 3 "$SERVERS") >"$WORK/sick-canary"
    check 'a canary that fails ends the run' \
        fails play canary fleet/flash.yml sick-canary package
    check 'the report says what it came to' reported 2 "$(outcome_of refuses)"
    check 'no other server has been tried' all_are 'not tried' $((SERVERS - 1))
    : >"$WORK/server2/srv/runs"
    rm -r "$WORK/server2/opt/varn-firmware" "$WORK/report"
    check 'no other server has been touched' all_are_untouched
}

test_first_run() {
    playbook '[1, "100%"]' >"$WORK/canary.yml"
    start_play first "$WORK/canary.yml" inventory package
    test/fleet/measure "$PLAYER" "$WORK" >"$WORK/measured" &
    measure=$!
    check 'a run with failures says so at its end' fails await_play
    wait "$measure"
    for number in $(each_server); do
        kind=$(kind_of "$number")
        name=$(name_of "$number")
        check "$name ($kind): the outcome is told" reported "$number" "$(outcome_of "$kind")"
        check "$name ($kind): its controller is whole" is_whole "$number"
        check "$name ($kind): the core program ran as often as it had to" \
            ran "$number" "$(runs_of "$kind")"
        case $kind in
            unreachable | hangs | at-work) ;;
            *) check "$name ($kind): nothing is left at work" nothing_at_work "$number" ;;
        esac
    done
    check 'the JSON report says the same' json_is_the_same
    check 'a session has a log' grep -q 'Verifying 100%' "$WORK/report/server1.log"
}

test_second_run() {
    healthy=0
    for number in $(each_server); do
        case $(kind_of "$number") in
            healthy | cut | installed)
                : >"$(folder_of "$number")/srv/runs"
                healthy=$((healthy + 1))
                ;;
            *) heal_server "$number" ;;
        esac
    done
    playbook '"100%"' >"$WORK/whole.yml"
    check 'the second run comes to its end' \
        play second "$WORK/whole.yml" inventory package \
        -e '{"varn_firmware_reboot": true, "varn_firmware_remove": true}'
    check 'it leaves alone what was done' all_are unchanged "$healthy"
    check 'it does the rest' all_are flashed $((SERVERS - healthy))
    for number in $(each_server); do
        name=$(name_of "$number")
        case $(kind_of "$number") in
            healthy | cut | installed)
                check "$name: its controller is flashed" is_flashed "$number"
                ;;
            *)
                check "$name: its controller is flashed and rebooted" \
                    is_flashed_and_rebooted "$number"
                check "$name: the package is removed" \
                    [ ! -e "$(folder_of "$number")/opt/varn-firmware" ]
                ;;
        esac
    done
}

test_third_run() {
    fingerprint >"$WORK/before"
    check 'the third run comes to its end' \
        play third "$WORK/whole.yml" inventory package
    fingerprint >"$WORK/after"
    check 'it changes nothing' cmp -s "$WORK/before" "$WORK/after"
    check 'it says so' fails grep -q 'changed=[1-9]' "$WORK/third.log"
    check 'all are unchanged' all_are unchanged "$SERVERS"
    for number in $(each_server); do
        check "$(name_of "$number"): nothing is left at work" nothing_at_work "$number"
    done
}

# ---- odd words -------------------------------------------------------------

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

# odd_play NAME USER
odd_play() {
    play "$1" fleet/flash.yml odd-inventory 'a folder: good/package' -u "$2" --private-key "$WORK/a key" \
        --ssh-common-args="-F none -o UserKnownHostsFile=$WORK/known_hosts"
}

# odd_row_is OUTCOME LINE: a spreadsheet shows the line and calculates nothing.
odd_row_is() {
    python3 - "$WORK/report/of \"all\"" "$@" <<'PYTHON'
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
    old_controller >"$WORK/server1/srv/varnflash.state"
    restart_as 1 odd
    mkdir "$WORK/server1/opt/it's here"
    mkdir "$WORK/a folder: good"
    cp "$WORK/package.tar" "$WORK/package.tar.sha256" "$WORK/a folder: good"
    odd_inventory >"$WORK/odd-inventory"

    check 'who is not root is sent away' fails odd_play guest guest
    check 'it is told why' odd_row_is 'not started' \
        'logged in as guest; the menu works for root only: set ansible_user to root'
    check 'options of ansible-playbook and odd words work' odd_play odd operator
    check 'what the core program says is kept as it is' odd_row_is flashed \
        '=1+2 Done. "a", b; {{ 6 * 7 }} '"$(printf '\303\274')"
    check 'its controller is flashed' is_flashed 1
    check 'the log is in the folder of the report' \
        [ -s "$WORK/report/of \"all\"/..%2Frack%201%2C%20%22%C3%BC%22.log" ]
}

# ---- interrupted runs ------------------------------------------------------

# prepare NUMBER KIND: with an old release.
prepare() {
    old_controller >"$(folder_of "$1")/srv/varnflash.state"
    rm -f "$(folder_of "$1")/srv/go"
    restart_as "$1" "$2"
}

no_session_is_left() { ! pgrep -f "(report.py|flash-server.exp|ansible-playbook).*$WORK"; }

# check_flash_goes_on NUMBER
check_flash_goes_on() {
    check 'nothing is left of the run' await no_session_is_left
    check 'the flash goes on without it' is_at_work "$1"
    touch "$(folder_of "$1")/srv/go"
    check 'it comes to its end' await is_flashed "$1"
    check 'nothing is left at work' await nothing_at_work "$1"
    check 'the core program ran once' ran "$1" 1
}

test_interrupted_runs() {
    playbook '[4, 1]' >"$WORK/batches.yml"
    inventory 1 2 3 7 4 >"$WORK/batches"
    prepare 1 healthy
    prepare 2 slow
    prepare 3 raced
    prepare 7 unreachable
    prepare 4 healthy

    start_play interrupted "$WORK/batches.yml" batches package
    check 'a server is reported while another one is flashed' await reported 1 flashed
    check 'the other one is being flashed' await is_at_work 2
    kill -s INT -- "-$PLAYER"
    check 'an interrupted run says so' fails await_play
    check 'what was done is reported' reported 1 "$(outcome_of healthy)"
    check 'a flash that goes on is unclear' await reported 2 \
        'unclear,[0-9]*,the session was ended during the flash'
    check 'a second session is not let in' reported 3 'not started,[0-9]*,.*another run is at work there'
    check 'a failed check is reported' reported 7 "$(outcome_of unreachable)"
    check 'the next batch was not tried' reported 4 'not tried,0,'
    check 'the JSON report says the same' json_is_the_same
    check_flash_goes_on 2

    prepare 2 slow
    start_play terminated "$WORK/batches.yml" batches package --limit server2
    check 'a server is being flashed' await is_at_work 2
    kill -TERM "$PLAYER"
    check 'a terminated run says so' fails await_play
    check 'the flash that goes on is unclear' await reported 2 \
        'unclear,[0-9]*,the session was ended during the flash'
    check_flash_goes_on 2
}
