#!/bin/sh
# Part of script/fleet-test: runs that are ended, and what is left of them.

no_session_is_left() { ! pgrep -f "(session.py|flash-server.exp|ansible-playbook).*$WORK"; }

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
    playbook '[3, 1]' >"$WORK/batches.yml"
    inventory 1 2 7 4 >"$WORK/batches"
    prepare 1 healthy
    prepare 2 slow
    prepare 7 unreachable
    prepare 4 healthy

    start_play interrupted "$WORK/batches.yml" batches package -e varn_firmware_canary=false
    check 'a server is reported while another one is flashed' await reported 1 flashed
    check 'the other one is being flashed' await is_at_work 2
    kill -s INT -- "-$PLAYER"
    check 'an interrupted run says so' fails await_play
    check 'what was done is reported' reported 1 "$(outcome_of healthy)"
    check 'a flash that goes on is unclear' await reported 2 \
        'unclear,[0-9]*,"\?the session was ended during the flash'
    check 'a failed check is reported' reported 7 "$(outcome_of unreachable)"
    check 'the next batch was not tried' reported 4 'not tried,0,'
    check 'the reports agree' reports_agree
    check_flash_goes_on 2

    prepare 2 slow
    start_play terminated "$WORK/batches.yml" batches package --limit server1,server2 \
        -e varn_firmware_again=true
    check 'what was flashed is flashed again if that is asked for' await ran 1 2
    check 'it comes to its end' await reported 1 'flashed,'
    check 'a server is being flashed' await is_at_work 2
    kill -TERM "$PLAYER"
    check 'a terminated run says so' fails await_play
    check 'the flash that goes on is unclear' await reported 2 \
        'unclear,[0-9]*,"\?the session was ended during the flash'
    check_flash_goes_on 2
}

# A run that is killed at any moment and run again. KILLS says how often that is tried. The flash of server2 is
# unclear, as the run before has been terminated.
test_killed_runs() {
    for attempt in $(seq 1 "${KILLS:-1}"); do
        for number in 1 3 4; do
            prepare "$number" healthy
        done
        inventory 1 2 3 4 >"$WORK/killed"
        start_play "killed-$attempt" "$WORK/whole.yml" killed package
        moment=$(shuf -i 20-140 -n 1)
        sleep "$(printf '%d.%d' $((moment / 10)) $((moment % 10)))"
        end_play
        await_play || :
        check "killed after $moment tenths of a second: nothing is left of it" await no_session_is_left
        for number in 1 2 3 4; do
            await nothing_at_work "$number"
        done
        check 'no server is reported flashed that is not' reports_are_true
        play "revived-$attempt" "$WORK/whole.yml" killed package || :
        check 'nor by the run after it' reports_are_true
        check 'what was terminated is left to a person' reported 2 'unclear,0,'
        for number in 1 2 3 4; do
            check "$(name_of "$number") is not flashed twice" ran_at_most_once "$number"
        done
    done
}

ran_at_most_once() { [ "$(wc -l <"$(folder_of "$1")/srv/runs")" -le 1 ]; }

reports_are_true() {
    for number in 1 2 3 4; do
        if reported "$number" '\(flashed\|unchanged\)' && ! is_flashed "$number"; then
            return 1
        fi
    done
}
