#!/bin/sh
# Part of script/fleet-test: what has to be true of a server, of its controller, and of the report.

# outcome_of KIND: a pattern for its row of the report after the first run.
outcome_of() {
    case $1 in
        healthy) echo 'flashed,[0-9]*,Done' ;;
        refuses) echo "refused,[0-9]*,\"varnflash: release $RELEASE runs already, nothing to do\"" ;;
        dies) echo 'unclear,[0-9]*,\[WARN\] .*; varnflash has ended; look at this controller' ;;
        hangs) echo 'unclear,[0-9]*,"the core program has not ended within 3 .*still at work' ;;
        fails-late) echo 'refused,[0-9]*,varnflash: image 2 cannot be written' ;;
        cut) echo 'flashed,[0-9]*,the connection is gone.*; but it is installed' ;;
        unreachable) echo 'not started,0,"cannot be reached.*Connection refused' ;;
        at-work) echo 'not started,0,varnflash is at work there already' ;;
        installed) echo 'unchanged,0,' ;;
        wrong-machine) echo 'not started,0,"this machine is .*, and the package is for' ;;
        full) echo 'not started,0,"/opt has .* bytes left, and .* are needed' ;;
        unknown-key) echo 'not started,0,"cannot be reached.*Host key verification failed' ;;
    esac
}

# runs_of KIND: how often the core program must have run.
runs_of() {
    case $1 in
        healthy | refuses | dies | hangs | fails-late | cut) echo 1 ;;
        *) echo 0 ;;
    esac
}

# ---- servers ---------------------------------------------------------------

ran() { [ "$(wc -l <"$(folder_of "$1")/srv/runs")" -eq "$2" ]; }

# has_controller NUMBER RELEASE1 RELEASE2 NEXT [ACTIVE]
has_controller() {
    state=$(folder_of "$1")/srv/varnflash.state
    shift
    controller "$@" | cmp -s - "$state"
}

is_flashed() { has_controller "$1" 2.10 "$RELEASE" 2; }
is_flashed_and_rebooted() { has_controller "$1" 2.10 "$RELEASE" 2 2; }

is_as_before() { controller_of "$1" | cmp -s - "$(folder_of "$1")/srv/varnflash.state"; }

# The controller as it was before, or flashed.
is_whole() {
    case $(kind_of "$1") in
        healthy | cut) is_flashed "$1" ;;
        *) is_as_before "$1" ;;
    esac
}

is_at_work() { inside "$1" pgrep -x varnflash >/dev/null; }

# No varnflash, no varnmenu.
nothing_at_work() { ! inside "$1" pgrep -l '^varn'; }

is_untouched() { ran "$1" 0 && [ -z "$(ls -A "$(folder_of "$1")/opt")" ] && is_as_before "$1"; }

all_are_untouched() {
    for number in $(each_server); do
        is_untouched "$number" || return 1
    done
}

# Nobody has even connected.
unheard() { ! cat "$WORK"/server*/srv/sshd.log | grep -q 'Accepted\|Connection'; }

fingerprint() {
    for number in $(each_server); do
        folder=$(folder_of "$number")
        find "$folder/opt" "$folder/srv" ! -name sshd.log -printf '%p %T@ %m %s\n'
    done
}

# ---- the report ------------------------------------------------------------

# reported NUMBER PATTERN
reported() { grep -sq "^$(name_of "$1"),$2" "$WORK/report/report.csv"; }

# all_are OUTCOME COUNT
all_are() { [ "$(grep -c "^server[0-9]*,$1," "$WORK/report/report.csv")" -eq "$2" ]; }

json_is_the_same() {
    python3 - "$WORK/report/report.csv" "$WORK/report/report.json" <<'PYTHON'
import csv, json, sys
rows = [dict(row, seconds=int(row["seconds"])) for row in csv.DictReader(open(sys.argv[1]))]
sys.exit(rows != json.load(open(sys.argv[2])))
PYTHON
}
