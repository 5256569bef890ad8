# shellcheck shell=bash
#
# What the helpers tell a person; to be sourced.

# Exit statuses with a meaning of their own.
# shellcheck disable=SC2034 # for those who source this
readonly exit_not_isolated=70 exit_not_possible=77

say() {
    printf '%s\n' "$*"
}

die() {
    printf '%s: %s\n' "${0##*/}" "$*" >&2
    exit 1
}

# quietly LOG COMMAND...: a command's output matters only when it fails.
quietly() {
    local log=$1
    shift
    mkdir -p "${log%/*}"
    if ! "$@" >"$log" 2>&1 </dev/null; then
        tail -n 100 "$log" >&2
        say "failed: $* (all of its output: $log)" >&2
        return 1
    fi
}
