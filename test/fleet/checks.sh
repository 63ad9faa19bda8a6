#!/bin/sh
# Part of script/fleet-test: counts what is checked, and says how far it is.

passed=0
failed=0

# check SENTENCE COMMAND [WORD...]
check() {
    sentence=$1
    shift
    if "$@"; then
        passed=$((passed + 1))
        printf 'passed: %s\n' "$sentence"
    else
        failed=$((failed + 1))
        printf 'FAILED: %s\n' "$sentence"
    fi
}

fails() { ! "$@"; }

# await COMMAND [WORD...]: until it succeeds, for a minute and a half at most.
await() {
    tries=900
    until "$@"; do
        tries=$((tries - 1))
        [ "$tries" -gt 0 ] || return 1
        sleep 0.1
    done
}

say() { printf '== %s s: %s\n' "$(($(date +%s) - STARTED))" "$*"; }

# The last line can be copied to where several measurements are compared.
show_results() {
    [ "$failed" -eq 0 ] || tail -n 60 "$WORK"/*.log
    printf '%d passed, %d failed\n' "$passed" "$failed"
    cat "$WORK/measured"
    [ "$failed" -eq 0 ]
}
