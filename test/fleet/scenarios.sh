#!/bin/sh
# Part of script/fleet-test: the runs, in this order. Each function says what it expects of one of them.

# servers FROM TO: the numbers of those that there are.
servers() { seq "$1" "$(($2 < SERVERS ? $2 : SERVERS))"; }

test_bad_packages() {
    # shellcheck disable=SC2046 # a list of words
    inventory $(each_server) >"$WORK/inventory"
    check 'a signature by a stranger ends the run' \
        fails play forged fleet/flash.yml inventory forged
    check 'it is told why' grep -q 'No server has been touched' "$WORK/forged.log"
    # shellcheck disable=SC2046 # a list of words
    inventory $(each_server) | sed "\$a\\    varn_firmware_archive: $WORK/damaged.tar" >"$WORK/groups"
    sed "s|^    server1:|&\\n      varn_firmware_archive: $WORK/package.tar|" "$WORK/groups" >"$WORK/other-group"
    check 'a damaged archive of another group ends the run' \
        fails play damaged fleet/flash.yml other-group ""
    check 'it is told why' grep -q 'No server has been touched' "$WORK/damaged.log"
    sed 's/serial: .*/strategy: free/' fleet/flash.yml >"$WORK/free.yml"
    check 'the strategy "free" is refused' fails play free "$WORK/free.yml" inventory package
    check 'it is told why' grep -q 'Remove "strategy: free"' "$WORK/free.log"
    check 'a pattern that is none is refused' fails play pattern fleet/flash.yml inventory package \
        -e varn_firmware_verify_match='('
    check 'nobody has connected to any server' unheard
}

# Some cannot be flashed, among them the first.
test_check_mode() {
    # shellcheck disable=SC2046 # a list of words
    inventory $(seq "$SERVERS" -1 1) >"$WORK/backwards"
    sed 's/serial: .*/serial: [1, "100%"]/' fleet/flash.yml >"$WORK/two-batches.yml"
    if [ "$SERVERS" -gt 6 ]; then
        check 'a check that finds something says so' \
            fails play check-mode "$WORK/two-batches.yml" backwards package --check --diff
    else
        check 'check mode comes to its end' \
            play check-mode "$WORK/two-batches.yml" backwards package --check --diff
    fi
    check 'it goes on to the last one' reported 1 'checked,0,it would be flashed'
    for number in $(servers 7 12); do
        check "$(name_of "$number"): what hinders is told" reported "$number" "$(outcome_of "$(kind_of "$number")")"
    done
    check 'it changes no server' all_are_untouched
}

# In front of it stands one that has nothing to do, which proves nothing.
test_sick_canary() {
    prepare 1 installed
    # shellcheck disable=SC2046 # a list of words
    inventory $(servers 1 6) >"$WORK/sick-canary"
    check 'a canary that fails ends the run' \
        fails play canary fleet/flash.yml sick-canary package
    check 'the first one had nothing to do' reported 1 'unchanged,0,'
    check 'the canary was the next one' reported 2 "$(outcome_of refuses)"
    for number in $(servers 3 6); do
        check "$(name_of "$number"): not tried" reported "$number" 'not tried,0,'
        check "$(name_of "$number"): not touched" ran "$number" 0
    done
}

# ---- what servers suffer from ----------------------------------------------

# check_servers RUN: what the report says, and what has happened there.
check_servers() {
    for number in $(each_server); do
        kind=$(kind_of "$number")
        name="$1: $(name_of "$number") ($kind)"
        check "$name: the outcome is told" reported "$number" "$(outcome_of "$kind")"
        check "$name: its controller is whole" is_whole "$number" "$kind"
        check "$name: the core program ran as often as it had to" \
            ran "$number" "$(runs_of "$kind")"
        case $kind in
            unreachable | hangs | at-work | forks) ;;
            *) check "$name: nothing is left at work" nothing_at_work "$number" ;;
        esac
    done
    check "$1: the reports agree" reports_agree
}

test_first_run() {
    prepare_as "$FIRST_KINDS"
    # shellcheck disable=SC2046 # a list of words
    inventory $(each_server) >"$WORK/inventory"
    playbook '[1, "100%"]' >"$WORK/canary.yml"
    start_play first "$WORK/canary.yml" inventory package -e varn_firmware_pause=1
    test/fleet/measure "$PLAYER" "$WORK" >"$WORK/measured" &
    measure=$!
    if [ "$SERVERS" -gt 1 ]; then
        check 'a run with failures says so at its end' fails await_play
    else
        check 'the first run comes to its end' await_play
    fi
    wait "$measure"
    [ "$SERVERS" -lt 2 ] || check 'it pauses after a batch' grep -q 'Pausing for 1 seconds' "$WORK/first.log"
    check_servers first
    check 'a session has a log' grep -q 'Verifying 100%' "$WORK/report/latest/server1.log"
    if [ "$SERVERS" -ge 3 ]; then
        check 'a summary says what to do' grep -q ' -e varn_firmware_acknowledge=server3' "$WORK/first.log"
    fi
}

test_more_kinds() {
    prepare_as "$MORE_KINDS"
    # shellcheck disable=SC2046 # a list of words
    inventory $(each_server) >"$WORK/inventory"
    play more "$WORK/whole.yml" inventory package -e varn_firmware_canary=false || :
    check_servers more
    for number in $(servers 12 12); do
        check 'the end of a long session is in its log' grep -q 'Verifying 100%' "$WORK/report/latest/server12.log"
        check 'and no more than that' [ "$(wc -c <"$WORK/report/latest/server12.log")" -le 10000 ]
    done
}

test_odd_kinds() {
    prepare_as "$ODD_KINDS"
    # shellcheck disable=SC2046 # a list of words
    inventory $(each_server) >"$WORK/inventory"
    printf '%s\n' '- ansible.builtin.command: "sh -c \"echo drain >>/srv/hooks\""' >"$WORK/before.yml"
    printf '%s\n' '- ansible.builtin.command: "sh -c \"echo {{ varn_firmware_result.outcome }} >>/srv/hooks\""' \
        >"$WORK/after.yml"
    play odd-kinds "$WORK/whole.yml" inventory package -e varn_firmware_canary=false \
        -e varn_firmware_before=before.yml -e varn_firmware_after=after.yml || :
    for number in $(servers 1 8) $(servers 10 12); do
        kind=$(kind_of "$number")
        check "$(name_of "$number") ($kind): the outcome is told" reported "$number" "$(outcome_of "$kind")"
        check "$(name_of "$number") ($kind): nothing was started" ran "$number" 0
    done
    for number in $(servers 10 10); do
        check 'the hooks have run, and know the outcome' hooks_are 10 drain 'not started'
    done
    for number in $(servers 5 5); do
        check 'the target of a link is as it was' \
            [ "$(stat -c %a "$(folder_of "$number")/opt/varn-firmware.real")" = 755 ]
    done
    for number in $(servers 9 9); do
        folder=$(folder_of 9)/opt/varn-firmware
        check 'what an earlier run has left is removed' [ ! -e "$folder/package-old" ]
        check 'what it has not made is kept' [ -e "$folder/package-of-somebody" ]
        check 'other files are kept' [ -e "$folder/notes/keep" ]
        check 'a link is kept' [ -L "$folder/package-link" ]
        check 'the hooks have run there' hooks_are 9 drain flashed
    done
}

# hooks_are NUMBER LINE...
hooks_are() {
    hooks=$(folder_of "$1")/srv/hooks
    shift
    printf '%s\n' "$@" | cmp -s - "$hooks"
}
