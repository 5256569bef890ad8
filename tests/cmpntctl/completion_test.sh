# What bash completes for cmpntctl: nothing but what --help tells, and the names of patches.
. "${BASH_SOURCE[0]%/*}/lib.sh" "$@"
. "$tests_folder/../../tools/cmpntctl/completion/cmpntctl.bash"

# completed WORD...: what is offered for the last word, in one line.
completed() {
    COMP_WORDS=("$cmpntctl" "$@")
    COMP_CWORD=$#
    COMPREPLY=()
    _cmpntctl
    printf '%s\n' "${COMPREPLY[@]}" | sort | paste -sd ' '
}

offers() {
    is "completion of '$1'" "$(eval "completed $1")" "$2"
}

is 'the function' "$(complete -p cmpntctl)" 'complete -F _cmpntctl cmpntctl'
offers 'hotp' hotpatch
offers '""' "$("$cmpntctl" --help | sed -n '/^Subcommands:/,/^$/ s/^  \([^ ]*\).*/\1/p' | sort | paste -sd ' ')"
offers 'db ""' 'backup check restore'
offers 'db --json ""' 'backup check restore'
offers '--lock-timeout 5 db re' restore
offers '--lo' --lock-timeout
offers 'db check --' '--device --help --json --lock-timeout --quick --yes'
offers 'db check -' '--device --help --json --lock-timeout --quick --yes -h -y'
offers 'log show --kind ""' 'error major trace'
offers 'log show --kind = e' error
offers 'list --state r' running
offers 'nothing ""' ''
offers 'device run x -- bas' "$(compgen -c bas | sort | paste -sd ' ')"

mkdir -p "$work/folder"
touch "$work/folder-like-file"
offers "md5 $work/fold" "$work/folder $work/folder-like-file"
offers "md5 a $work/folder-" "$work/folder-like-file"
offers "--device $work/fold" "$work/folder"
offers "device new $work/fold" "$work/folder"

# Without a database there are no names, and there is none afterwards.
offers 'show ""' ''
is 'the database' "$(ls -A /var/lib/opkg 2>/dev/null)" ''
mkdir -p "${main_db%/*}" "${backup_db%/*}"
ctl init
for name in smu_one smu_two other; do
    expect_exit 0 record add "$name" hello 1.1 --state active
done
offers 'show ""' 'other smu_one smu_two'
offers 'show smu' 'smu_one smu_two'
offers 'show --json o' other
offers 'plan rollback smu_o' smu_one
offers 'list --patch smu_t' smu_two
offers '--device /opt/none show ""' ''

finish_tests
