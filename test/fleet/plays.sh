#!/bin/sh
# Part of script/fleet-test: inventories, playbooks, and runs of ansible-playbook.

PLAYER=

# host_lines NUMBER...: an inventory's lines for these servers, in this order.
host_lines() {
    for number; do
        echo "    $(name_of "$number"):"
        [ "$number" -ne 3 ] || echo "      ansible_ssh_host: $(address_of "$number")"
        case $(kind_of "$number") in
            guest) echo '      ansible_user: guest' ;;
            hangs) printf '      varn_firmware_%s: 3\n' flash_seconds patience ;;
            forks) echo '      varn_firmware_patience: 3' ;;
            cut) echo "      varn_firmware_verify_command: cat /srv/varnflash.state" ;;
            unverified) echo "      varn_firmware_verify_command: echo release2=${RELEASE}9" ;;
            no-answer) echo "      varn_firmware_installed_command: echo could not open device; exit 1" ;;
            never-answers)
                echo "      varn_firmware_installed_command: sleep 20"
                echo "      varn_firmware_command_seconds: 5"
                ;;
            chats) echo "      varn_firmware_log_bytes: 10000" ;;
        esac
    done
}

# inventory NUMBER...
inventory() {
    printf '%s\n' 'varn_servers:' '  hosts:'
    host_lines "$@"
    cat <<VARS
  vars:
    ansible_user: operator
    ansible_port: $PORT
    ansible_ssh_private_key_file: $WORK/a key
    ansible_ssh_common_args: >-
      -F $WORK/ssh_config -o UserKnownHostsFile=$WORK/known_hosts -o GlobalKnownHostsFile=/dev/null
    varn_firmware_installed_command: . /srv/varnflash.state; eval "echo it runs \\\$release\$active"
    varn_firmware_installed_text: it runs ${RELEASE%.*}[.]${RELEASE#*.}
    varn_firmware_verify_match: release2=$RELEASE
    varn_firmware_patience: 120
    varn_firmware_signers: $WORK/signers
    varn_firmware_package_tool: $PACKAGE_TOOL
    varn_firmware_report: $WORK/report
VARS
}

# playbook SERIAL: in these batches. The first failure ends the run, but not before the end of a batch.
playbook() {
    sed "s/serial: .*/serial: $1/; s/max_fail_percentage: .*/any_errors_fatal: true/" fleet/flash.yml
}

# start_play NAME PLAYBOOK INVENTORY PACKAGE [WORD...]: the output is kept in NAME.log. PACKAGE is "" where the
# inventory names packages. It is a process
# group of its own, "PLAYER", which SIGINT ends as Ctrl-C does.
start_play() {
    say "$1"
    log=$WORK/$1.log
    playbook=$2
    hosts=$3
    package=$4
    shift 4
    ANSIBLE_CONFIG=$PWD/fleet/ansible.cfg ANSIBLE_HOME=$WORK/ansible ANSIBLE_REMOTE_TMP=$WORK/tmp \
        ANSIBLE_NOCOLOR=1 setsid env --default-signal=INT,QUIT ansible-playbook "$playbook" \
        -i "$WORK/$hosts" ${package:+-e "{\"varn_firmware_archive\": \"$WORK/$package.tar\"}"} "$@" \
        >"$log" 2>&1 </dev/null &
    PLAYER=$!
}

await_play() {
    wait "$PLAYER"
    status=$?
    PLAYER=
    return "$status"
}

play() {
    start_play "$@"
    await_play
}

# Its sessions end when it is gone.
end_play() {
    [ -z "$PLAYER" ] || kill -s KILL -- "-$PLAYER" 2>/dev/null || :
}

# The connections that Ansible keeps have ended with their servers; a session ends within a second.
await_last_process() {
    await no_process_is_left || {
        echo 'fleet-test: these processes are left:' >&2
        pgrep -af "$WORK" >&2
    }
}

no_process_is_left() { ! pgrep -f "$WORK" >/dev/null; }
