#!/bin/sh
# Part of script/fleet-test: what has to be true of a server, of its controller, and of the report.

# outcome_of KIND: a pattern for its row of the report, if nothing is known of the server before.
outcome_of() {
    case $1 in
        healthy | no-line-end | chats) echo 'flashed,[0-9]*,Done' ;;
        refuses) echo 'refused,[0-9]*,varnflash: this controller is locked' ;;
        dies | dies-late) echo 'unclear,[0-9]*,\[WARN\] .*; varnflash has ended; look at this controller' ;;
        hangs) echo 'unclear,[0-9]*,"\?the core program has not ended within 3 .*still at work' ;;
        forks) echo 'unclear,[0-9]*,"\?Done.*still at work' ;;
        fails-late) echo 'unclear,[0-9]*,the core program said both: Image 1: Done. / varnflash: image 2' ;;
        looks-like-the-menu) echo 'unclear,[0-9]*,the core program said both: Done. /' ;;
        cut) echo 'flashed,[0-9]*,the connection is gone.*; but it is verified' ;;
        cut-unverified) echo 'unclear,[0-9]*,the connection is gone.*; varnflash has ended; look at this controller; varn_firmware_ins' ;;
        unverified) echo 'unclear,[0-9]*,Done.*varn_firmware_verify_match does not match' ;;
        reboots) echo 'unclear,[0-9]*,Done.*the server was rebooted in the middle' ;;
        unreachable) echo 'not started,0,"\?cannot be reached.*Connection refused' ;;
        at-work) echo 'not started,0,varnflash is at work there already' ;;
        at-menu) echo 'not started,0,"another flash or reboot is at work there' ;;
        raced) echo 'not started,[0-9]*,.*[Aa]nother flash or reboot is at work' ;;
        installed) echo 'unchanged,0,' ;;
        wrong-machine) echo 'not started,0,"\?this machine is .*, and the package is for' ;;
        full) echo 'not started,0,"/opt has .* bytes left, and .* are needed' ;;
        noexec) echo 'not started,0,"/opt is mounted noexec' ;;
        unknown-key) echo 'not started,0,"\?cannot be reached.*Host key verification failed' ;;
        nologin) echo 'not started,0,.*This account is currently not available' ;;
        noisy) echo 'not started,0,.*Good morning' ;;
        guest) echo 'not started,0,logged in as guest; the menu works for root only: set ansible_user to root' ;;
        no-python) echo 'not started,0,"Python 3 is missing on the server' ;;
        no-terminfo) echo 'not started,[0-9]*,.*Debian.s package ncurses-base' ;;
        no-terminal) echo 'not started,[0-9]*,.*PermitTTY yes' ;;
        no-answer) echo 'not started,0,.*could not open device' ;;
        never-answers) echo 'not started,0,.*varn_firmware_command_seconds' ;;
        link) echo 'not started,0,/opt/varn-firmware is a symbolic link' ;;
        foreign) echo 'not started,0,"/opt/varn-firmware is somebody else' ;;
        damaged) echo 'unclear,0,the record of this server cannot be used (it is no JSON)' ;;
        cloned) echo 'unclear,0,the record of this server cannot be used (it is about another machine)' ;;
    esac
}

# runs_of KIND: how often the core program must have run.
runs_of() {
    case $1 in
        healthy | refuses | dies | dies-late | hangs | fails-late | cut | cut-unverified | unverified) echo 1 ;;
        no-line-end | chats | forks | looks-like-the-menu | reboots) echo 1 ;;
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

# is_whole NUMBER KIND: the controller is as it was before, or flashed.
is_whole() {
    case $2 in
        installed) is_flashed_and_rebooted "$1" ;;
        healthy | no-line-end | chats | cut | cut-unverified | unverified) is_flashed "$1" ;;
        reboots | forks | dies-late) is_flashed "$1" ;;
        *) old_controller | cmp -s - "$(folder_of "$1")/srv/varnflash.state" ;;
    esac
}

is_at_work() { inside "$1" pgrep -x varnflash >/dev/null; }

# No varnflash, no varnmenu.
nothing_at_work() { ! inside "$1" pgrep -l '^varn'; }

is_untouched() {
    folder=$(folder_of "$1")
    ran "$1" 0 && [ -z "$(find "$folder/opt" "$folder/lib" -mindepth 1)" ] &&
        controller_of "$(kind_of "$1")" | cmp -s - "$folder/srv/varnflash.state"
}

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

# recorded NUMBER STATE
recorded() { grep -q "\"state\": \"$2\"" "$(folder_of "$1")/lib/varn-firmware/record.json"; }

# ---- the report ------------------------------------------------------------

# reported NUMBER PATTERN
reported() { grep -sq "^$(name_of "$1"),$2" "$WORK/report/latest/report.csv"; }

# all_are OUTCOME COUNT
all_are() { [ "$(grep -c "^server[0-9]*,$1," "$WORK/report/latest/report.csv")" -eq "$2" ]; }

# The three files of the report agree.
reports_agree() {
    python3 - "$WORK/report/latest/report" <<'PYTHON'
import csv, json, sys
from xml.etree import ElementTree
stem = sys.argv[1]
rows = json.load(open(stem + ".json"))
table = [dict(row, seconds=int(row["seconds"])) for row in csv.DictReader(open(stem + ".csv"))]
good = {row["server"] for row in rows if row["outcome"] in ("flashed", "flashed before", "unchanged", "checked")}
cases = ElementTree.parse(stem + ".xml").getroot()
sys.exit(rows != table
         or {case.get("name") for case in cases if case.find("system-out") is not None} != good
         or len(cases) != len(rows))
PYTHON
}
