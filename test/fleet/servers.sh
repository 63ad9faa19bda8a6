#!/bin/sh
# Part of script/fleet-test: the simulated servers, numbered from 1. The folder of each holds
#
#   opt, srv, lib        its own /opt, /srv and /var/lib; srv/kind says what ails it
#   machine-id           its /etc/machine-id; srv/boot_id is that of its kernel
#   sshd_config          that of its sshd
#   srv/sshd.log         what its sshd says
#   pid                  unshare(1), in whose namespaces it lives

name_of() { printf 'server%d\n' "$1"; }
folder_of() { printf '%s/server%d\n' "$WORK" "$1"; }
address_of() { printf '127.20.%d.%d\n' $(($1 / 250)) $(($1 % 250 + 1)); }
each_server() { seq 1 "$SERVERS"; }

# Free at every address, so at those of the servers.
free_port() {
    python3 -c 'import socket; s = socket.socket(); s.bind(("", 0)); print(s.getsockname()[1])'
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
    mkdir -p "$folder/opt" "$folder/srv" "$folder/lib"
    [ -e /etc/machine-id ] || : >/etc/machine-id
    printf '%032d\n' "$1" >"$folder/machine-id"
    cat /proc/sys/kernel/random/uuid >"$folder/srv/boot_id"
    printf 'Host %s\n    HostName %s\n' "$(name_of "$1")" "$(address_of "$1")" >>"$WORK/ssh_config"
    kind_of "$1" >"$folder/srv/kind"
    : >"$folder/srv/runs"
    cp demo/varnflash "$folder/srv/varnflash"
    controller_of "$(kind_of "$1")" >"$folder/srv/varnflash.state"
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

# inside NUMBER COMMAND [WORD...]: runs it among the processes of a server.
inside() {
    first=$(first_process_of "$1")
    shift
    nsenter --target "$first" --pid --mount -- "$@"
}
