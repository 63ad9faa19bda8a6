#!/bin/sh
# Part of script/fleet-test: what the servers suffer from.

# The kinds of the runs, by the number of the server; any more servers are healthy.
export FIRST_KINDS='healthy refuses dies hangs fails-late cut unreachable at-work installed wrong-machine full
    unknown-key'
export MORE_KINDS='no-line-end looks-like-the-menu dies-late forks reboots cut-unverified unverified at-menu raced
    no-answer never-answers chats'
export ODD_KINDS='nologin noisy no-terminal noexec link foreign damaged cloned leftovers no-terminfo guest
    no-python'

kinds=$FIRST_KINDS

# kind_of NUMBER: its kind in this run.
kind_of() {
    # shellcheck disable=SC2086 # a list of words
    set -- "$1" $kinds
    if [ "$1" -lt $# ]; then
        eval "printf '%s\n' \"\${$(($1 + 1))}\""
    else
        echo healthy
    fi
}

# ---- controllers -----------------------------------------------------------

# controller RELEASE1 RELEASE2 NEXT [ACTIVE]: the state of a controller, as varnflash keeps it.
controller() {
    printf 'active=%s\nnext=%s\nrelease1=%s\nrelease2=%s\nispfr=0\nstep=0\n' \
        "${4:-1}" "$3" "$1" "$2"
}

old_controller() { controller 2.10 2.10 1; }
flashed_controller() { controller 2.10 "$RELEASE" 2; }

# controller_of KIND: the state before the run.
controller_of() {
    case $1 in
        installed) controller 2.10 "$RELEASE" 2 2 ;;
        *) old_controller ;;
    esac
}

# ---- making them ill --------------------------------------------------------

# prepare NUMBER KIND: an old release, and nothing known of the server.
prepare() {
    folder=$(folder_of "$1")
    stop_server "$1"
    rm -rf "$folder/srv/go" "$folder/lib/varn-firmware" "$folder/opt"/varn-firmware*
    controller_of "$2" >"$folder/srv/varnflash.state"
    case $2 in
        link)
            mkdir "$folder/opt/varn-firmware.real"
            ln -s varn-firmware.real "$folder/opt/varn-firmware"
            ;;
        foreign)
            mkdir "$folder/opt/varn-firmware"
            chown 1000 "$folder/opt/varn-firmware"
            ;;
        leftovers) make_leftovers "$folder/opt/varn-firmware" ;;
        damaged | cloned) make_record "$folder/lib/varn-firmware" "$2" ;;
    esac
    restart_as "$1" "$2"
}

# What other people have put there, and what an earlier run has left.
make_leftovers() {
    mkdir "$1" "$1/package-old" "$1/package-of-somebody" "$1/notes"
    : >"$1/package-old/.varn_firmware"
    : >"$1/notes/keep"
    ln -s ../../srv "$1/package-link"
}

# make_record FOLDER KIND
make_record() {
    mkdir -m 700 "$1"
    python3 - >"$1/record.json" <<'PYTHON'
import json
texts = "state sha256 release entry server run line boot_id machine_id begun ended".split()
print(json.dumps({**dict.fromkeys(texts, "x"), "state": "flashed"}))
PYTHON
    [ "$2" = cloned ] || echo '{' >"$1/record.json"
    chmod 600 "$1/record.json"
}

# prepare_as KINDS: all servers, for a run of its own.
prepare_as() {
    kinds=$1
    for number in $(each_server); do
        prepare "$number" "$(kind_of "$number")"
    done
}
