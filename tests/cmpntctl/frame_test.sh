#!/bin/bash
#
# The command line itself: help, version, wrong usage, the lock.

# shellcheck source=tests/cmpntctl/lib.sh
. "${BASH_SOURCE[0]%/*}/lib.sh" "$@"

expect_exit 0 --help
expect_out 'Example:'
expect_out '--lock-timeout SECONDS'
expect_out 'record'
is 'nothing on standard error' "$err" ''
expect_exit 0 record --help
expect_out 'Example:'
expect_exit 0 record add --help
expect_out 'Example:'
expect_exit 0 --version
expect_out 'cmpntctl 1.'

expect_exit 64
expect_err 'Try: cmpntctl --help'
is 'nothing on standard output' "$out" ''
expect_exit 64 no-such-command
expect_exit 64 list --no-such-option
expect_err 'Try: cmpntctl list --help'
expect_exit 64 list --lock-timeout soon
expect_exit 64 show

# Every level has its help, and every command an example.
help_of() {
    expect_exit 0 "$@" --help
    expect_out 'Example:'
    local command commands
    mapfile -t commands < <(sed -n '/^Subcommands:/,/^[^ S]/s/^  \([a-z0-9-]*\) .*/\1/p' <<<"$out")
    for command in "${commands[@]}"; do
        help_of "$@" "$command"
    done
}
help_of

finish_tests
