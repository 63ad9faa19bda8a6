#!/bin/sh
# Part of script/fleet-test: runs that find something done.

# Nothing has been rebooted, so the command still tells the old release. server5 has been looked at, server2 and
# server7 to server12 are repaired; server6 is known by two names.
test_second_run() {
    for number in $(servers 2 2) $(servers 5 5) $(servers 7 12); do
        [ "$(kind_of "$number")" != unknown-key ] || make_known "$number"
        restart_as "$number" healthy
    done
    for number in $(servers 1 1) $(servers 3 4) $(servers 6 6); do
        : >"$(folder_of "$number")/srv/runs"
    done
    playbook '"100%"' >"$WORK/whole.yml"
    sed "s/^  vars:/    other-name:\\n      ansible_host: server6\\n&/" "$WORK/inventory" >"$WORK/twins"
    reboots='{"varn_firmware_reboot": true, "varn_firmware_remove": true}'
    play second "$WORK/whole.yml" twins package -e varn_firmware_acknowledge=server5 -e "$reboots" || :
    check 'what was flashed is not flashed again' reported 1 'flashed before,0,Done.*; not rebooted since'
    check 'it has not run again' ran 1 0
    for number in $(servers 3 4); do
        check "$(name_of "$number"): unclear stays unclear" reported "$number" '\(unclear\|not started\),0,'
        check "$(name_of "$number"): it has not run again" ran "$number" 0
    done
    for number in $(servers 6 6); do
        check 'a flash that was verified is not done again' reported 6 'flashed before,0,'
        check 'it has not run again' ran 6 0
        check 'its other name is left alone' grep -q '^other-name,same server,0,same server as server6' \
            "$WORK/report/latest/report.csv"
    done
    for number in $(servers 2 2) $(servers 5 5) $(servers 7 8) $(servers 10 12); do
        check "$(name_of "$number"): it is flashed now" reported "$number" 'flashed,'
        check "$(name_of "$number"): its controller is rebooted" is_flashed_and_rebooted "$number"
        check "$(name_of "$number"): the package is removed" \
            [ ! -e "$(folder_of "$number")/opt/varn-firmware" ]
    done
}

# What is installed is left alone, and nothing on the servers changes. The first one does not come to the role.
test_idle_run() {
    last=$(servers 1 4 | tail -n 1)
    for number in $(servers 1 4); do
        prepare "$number" installed
    done
    # shellcheck disable=SC2046 # a list of words
    inventory $(servers 1 4) >"$WORK/installed"
    fails="inventory_hostname == '$(name_of "$last")'"
    sed -e 's/serial: .*/serial: "100%"/; s/max_fail_percentage: .*/max_fail_percentage: 100/' \
        -e "s/^  roles:/  order: reverse_inventory\n  pre_tasks:\n    - ansible.builtin.fail:\n      when: $fails\n&/" \
        fleet/flash.yml >"$WORK/idle.yml"
    fingerprint >"$WORK/before"
    check 'a run whose first server fails before says so' fails play idle "$WORK/idle.yml" installed package
    fingerprint >"$WORK/after"
    check 'it changes nothing' cmp -s "$WORK/before" "$WORK/after"
    check 'it says so' fails grep -q 'changed=[1-9]' "$WORK/idle.log"
    check 'all others are unchanged' all_are unchanged $((last - 1))
    check 'that one is not tried' reported "$last" 'not tried,0,'
}
