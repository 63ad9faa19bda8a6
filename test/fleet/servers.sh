#!/bin/sh
# Part of script/fleet-test: the simulated servers, numbered from 1. The folder of each holds
#
#   opt, srv             its own /opt and /srv; srv/kind says what ails it
#   sshd_config          that of its sshd
#   srv/sshd.log         what its sshd says
#   pid                  unshare(1), in whose namespaces it lives

kinds='healthy refuses dies hangs fails-late cut unreachable at-work installed wrong-machine full unknown-key'

# kind_of NUMBER: its kind in the first runs.
kind_of() {
    # shellcheck disable=SC2086 # a list of words
    set -- "$1" $kinds
    if [ "$1" -lt $# ]; then
        eval "printf '%s\n' \"\${$(($1 + 1))}\""
    else
        echo healthy
    fi
}

name_of() { printf 'server%d\n' "$1"; }
folder_of() { printf '%s/server%d\n' "$WORK" "$1"; }
address_of() { printf '127.20.%d.%d\n' $(($1 / 250)) $(($1 % 250 + 1)); }
each_server() { seq 1 "$SERVERS"; }

# Free at every address, so at those of the servers.
free_port() {
    python3 -c 'import socket; s = socket.socket(); s.bind(("", 0)); print(s.getsockname()[1])'
}

# ---- controllers -----------------------------------------------------------

# controller RELEASE1 RELEASE2 NEXT [ACTIVE]: the state of a controller, as varnflash keeps it.
controller() {
    printf 'active=%s\nnext=%s\nrelease1=%s\nrelease2=%s\nispfr=0\nstep=0\n' \
        "${4:-1}" "$3" "$1" "$2"
}

old_controller() { controller 2.10 2.10 1; }
flashed_controller() { controller 2.10 "$RELEASE" 2; }

# controller_of NUMBER: the state before the first run.
controller_of() {
    case $(kind_of "$1") in
        refuses) controller "$RELEASE" 2.10 1 ;;
        installed) flashed_controller ;;
        *) old_controller ;;
    esac
}

# ---- making ----------------------------------------------------------------

make_key() { ssh-keygen -q -t ed25519 -N '' -C "$2" -f "$1"; }

make_keys() { make_key "$WORK/a key" ''; }

# The user "operator" of each server is another name of root's, and "guest" is somebody else.
make_users() {
    cat >"$WORK/passwd" <<USERS
root:x:0:0:root:/root:/usr/sbin/nologin
operator:x:0:0:root:/root:/bin/sh
guest:x:1000:1000:guest:/tmp:/bin/sh
sshd:x:100:65534::/run/sshd:/usr/sbin/nologin
USERS
}

make_server() {
    folder=$(folder_of "$1")
    mkdir -p "$folder/opt" "$folder/srv"
    kind_of "$1" >"$folder/srv/kind"
    : >"$folder/srv/runs"
    cp demo/varnflash "$folder/srv/varnflash"
    controller_of "$1" >"$folder/srv/varnflash.state"
    make_key "$folder/host_key" ''
    cat >"$folder/sshd_config" <<CONFIG
ListenAddress $(address_of "$1"):$PORT
HostKey $folder/host_key
AuthorizedKeysFile "$WORK/a key.pub"
StrictModes no
UsePAM no
PermitRootLogin prohibit-password
PasswordAuthentication no
KbdInteractiveAuthentication no
PidFile none
PrintMotd no
Subsystem sftp internal-sftp
CONFIG
    [ "$(kind_of "$1")" = unknown-key ] || make_known "$1"
}

make_servers() {
    make_users
    for number in $(each_server); do
        make_server "$number"
    done
}

make_known() {
    printf '[%s]:%s %s\n' "$(address_of "$1")" "$PORT" "$(cat "$(folder_of "$1")/host_key.pub")" \
        >>"$WORK/known_hosts"
}

# ---- starting and stopping -------------------------------------------------

start_server() {
    folder=$(folder_of "$1")
    if [ "$(cat "$folder/srv/kind")" = unreachable ]; then
        return 0
    fi
    : >"$folder/srv/sshd.log"
    unshare --mount-proc --pid --fork --kill-child "$PWD/test/fleet/server" "$folder" \
        >"$folder/server.log" 2>&1 </dev/null &
    echo $! >"$folder/pid"
}

listens() { grep -q '^Server listening' "$(folder_of "$1")/srv/sshd.log"; }

await_server() {
    folder=$(folder_of "$1")
    if [ -e "$folder/pid" ] && ! await listens "$1"; then
        echo "fleet-test: $(name_of "$1") does not start:" >&2
        cat "$folder/server.log" "$folder/srv/sshd.log" >&2
        exit 1
    fi
}

start_servers() {
    for number in $(each_server); do
        start_server "$number"
    done
    for number in $(each_server); do
        await_server "$number"
    done
}

# The first process of a server, its sshd. All others end with it, and then unshare does.
first_process_of() { pgrep -P "$(cat "$(folder_of "$1")/pid")"; }

# Killed before it has a first process, unshare takes it along.
stop_server() {
    folder=$(folder_of "$1")
    [ -e "$folder/pid" ] || return 0
    first=$(first_process_of "$1") || first=$(cat "$folder/pid")
    kill -KILL "$first" 2>/dev/null || :
    wait "$(cat "$folder/pid")" 2>/dev/null || :
    rm "$folder/pid"
}

stop_servers() {
    for number in $(each_server); do
        stop_server "$number"
    done
}

# restart_as NUMBER KIND: its controller is left as it is.
restart_as() {
    stop_server "$1"
    folder=$(folder_of "$1")
    echo "$2" >"$folder/srv/kind"
    : >"$folder/srv/runs"
    start_server "$1"
    await_server "$1"
}

# Repairs a server. Its controller is left as it is, except for the one that refuses.
heal_server() {
    case $(kind_of "$1") in
        refuses) old_controller >"$(folder_of "$1")/srv/varnflash.state" ;;
        unknown-key) make_known "$1" ;;
    esac
    restart_as "$1" healthy
}

# inside NUMBER COMMAND [WORD...]: runs it among the processes of a server.
inside() {
    first=$(first_process_of "$1")
    shift
    nsenter --target "$first" --pid --mount -- "$@"
}
