#!/bin/bash
#
# What bash completes for cmpntctl: nothing but what --help tells, and the names of patches.

# shellcheck source=tests/cmpntctl/lib.sh
. "${BASH_SOURCE[0]%/*}/lib.sh" "$@"
# shellcheck source=tools/cmpntctl/completion/cmpntctl.bash
. "$tests_folder/../../tools/cmpntctl/completion/cmpntctl.bash"

# offers EXPECTED WORD...: what is offered for the last word, sorted.
offers() {
    local expected=$1
    shift
    COMP_WORDS=("$cmpntctl" "$@")
    COMP_CWORD=$#
    COMPREPLY=()
    _cmpntctl
    is "completion of '$*'" "$(printf '%s\n' "${COMPREPLY[@]}" | sort | paste -sd ' ')" "$expected"
}

is 'the function' "$(complete -p cmpntctl)" 'complete -F _cmpntctl cmpntctl'
offers hotpatch hotp
offers "$("$cmpntctl" --help | sed -n '/^Subcommands:/,/^$/ s/^  \([^ ]*\).*/\1/p' | sort | paste -sd ' ')" ''
offers 'backup check restore' db ''
offers 'backup check restore' db --json ''
offers restore --lock-timeout 5 db re
offers --lock-timeout --lo
offers '--device --help --json --lock-timeout --quick --yes' db check --
offers '--device --help --json --lock-timeout --quick --yes -h -y' db check -
offers 'error major trace' log show --kind ''
offers error log show --kind = e
offers running list --state r
offers '' nothing ''
offers "$(compgen -c bas | sort | paste -sd ' ')" device run x -- bas

mkdir -p "$work/folder"
touch "$work/folder-like-file"
offers "$work/folder $work/folder-like-file" md5 "$work/fold"
offers "$work/folder-like-file" md5 a "$work/folder-"
offers "$work/folder" --device "$work/fold"
offers "$work/folder" device new "$work/fold"

# Without a database there are no names, and there is none afterwards.
offers '' show ''
is 'the database' "$(ls -A /var/lib/opkg 2>/dev/null)" ''
mkdir -p "${main_db%/*}" "${backup_db%/*}"
ctl init
for name in smu_one smu_two other; do
    expect_exit 0 record add "$name" hello 1.1 --state active
done
offers 'other smu_one smu_two' show ''
offers 'smu_one smu_two' show smu
offers other show --json o
offers smu_one plan rollback smu_o
offers smu_two list --patch smu_t
offers '' --device /opt/none show ''

finish_tests
