# Completion of varnmenu-package for bash: commands, the options of each, and files.
# shellcheck shell=bash

_varnmenu_package() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} options=''
    COMPREPLY=()
    if [ "$COMP_CWORD" -eq 1 ]; then
        mapfile -t COMPREPLY < <(compgen -W 'create check verify unpack --help --version' -- "$word")
        return
    fi
    case ${COMP_WORDS[1]} in
        create)
            options='--image --core --release --sdr --system --documents --output --tool --sign'
            ;;
        verify) options='--signers --signer' ;;
        unpack) options='--signers --signer --into' ;;
    esac
    case $before in
        --release | --sdr | --system | --signer) ;;
        --documents | --output | --into) mapfile -t COMPREPLY < <(compgen -d -- "$word") ;;
        *)
            case $word in
                -*) mapfile -t COMPREPLY < <(compgen -W "$options --help" -- "$word") ;;
                *) mapfile -t COMPREPLY < <(compgen -f -- "$word") ;;
            esac
            ;;
    esac
}

complete -o filenames -F _varnmenu_package varnmenu-package
