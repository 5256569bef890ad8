#!/bin/bash
#
# list, show, packages, record and init.

# shellcheck source=tests/cmpntctl/lib.sh
. "${BASH_SOURCE[0]%/*}/lib.sh" "$@"

sql() {
    python3 -c 'import sqlite3, sys
db = sqlite3.connect(sys.argv[1])
db.executescript(sys.argv[2])
db.commit()' "${2:-$main_db}" "$1"
}

# --- without a database: nothing is made, and what to do is said -----------------------

before=$(tree)
for command in list 'show smu_1' packages 'plan rollback smu_1' 'rollback smu_1 --yes' \
    'record add smu_1 bash 1' 'record state smu_1 active' 'record delete smu_1 --yes' \
    'record time smu_1'; do
    # shellcheck disable=SC2086 # words
    expect_exit 2 $command --json
    expect_err "there is no database: $main_db"
    expect_err 'cmpntctl init'
    is "$last: nothing on standard output" "$out" ''
done
is 'queries leave everything as it is' "$(tree | grep -v cmpntctl_history)" \
    "$(printf '%s\n' "$before" | grep -v cmpntctl_history)"

# --- init -------------------------------------------------------------------------

expect_exit 0 init --json
expect_json 'len(d["created"])' 4
expect_exit 2 init --json
expect_json 'd["created"]' '[]'
expect_exit 2 init
expect_out 'nothing to do'

# --- the empty case -----------------------------------------------------------------

expect_exit 2 list
expect_out 'no upgrade records'
expect_exit 2 list --json
expect_json 'd["records"]' '[]'
expect_exit 2 packages
expect_exit 2 packages --json
expect_json 'd["records"]' '[]'
expect_exit 2 show smu_1
expect_err 'no record has the patch "smu_1"'
expect_exit 2 record state smu_1 active
expect_exit 2 record delete smu_1 --yes
expect_exit 2 record time smu_1

# --- writes -------------------------------------------------------------------------

expect_exit 0 record add smu_1 bash 5.2+smu1 --file /data/cmpnt/opkg/download/smu_1/bash.ipk \
    --last-version 5.2 --cold --description 'Corrects "bash" & more' --state active --json
expect_json 'd["records"]' 1
expect_exit 0 record add smu_1 tar 1.34+smu1
expect_out 'added tar 1.34+smu1 of smu_1'
expect_exit 0 record add smu_2 bash 5.2+smu2 --hot --single
expect_exit 1 record add smu_2 bash 5.2+smu3
expect_err 'already'
is 'the backup follows' "$(cmp "$main_db" "$backup_db" && echo same)" same

expect_exit 0 record state smu_1 RUNNING --json
expect_json 'd["records"]' 2
expect_exit 0 record state smu_2 4 --package bash
expect_out '1 record of smu_2 set to active'
expect_exit 2 record state smu_2 4 --package tar
expect_err 'with the package tar'
expect_exit 64 record state smu_2 broken
expect_err 'Deactive_ready'
expect_exit 0 record time smu_1 '2024-03-01 10:15:02' --json
expect_exit 0 record time smu_2
expect_exit 64 record time smu_2 '2024' --clear
expect_exit 0 list --patch smu_2 --json
is 'the time is now' "$([[ $out =~ \"effective_time\":\"20[0-9-]+\ [0-9:]+\" ]] && echo yes)" yes
expect_exit 0 record time smu_2 --clear
expect_exit 0 list --patch smu_2 --json
expect_json 'd["records"][0]["effective_time"]' '""'

# --- the guard ------------------------------------------------------------------------

before=$(tree)
# shellcheck disable=SC2016 # not to be expanded
for name in "x'y" 'x y' '$(reboot)' '-x' '~x' 'x;y' '' "$(printf '%080d' 1)"; do
    expect_exit 64 record add smu_1 --file /a -- "$name" 1
    expect_exit 64 record state -- "$name" active
    expect_exit 64 record delete --yes -- "$name"
    expect_exit 64 record time -- "$name"
    expect_exit 64 rollback --yes -- "$name"
done
expect_exit 64 record add smu_3 bash '1 2'
expect_err 'a blank'
expect_exit 64 record add smu_3 bash 1 --file '/a;b'
expect_exit 64 record add smu_3 bash 1 --description "it's"
expect_exit 64 record time smu_1 "it's"
is 'what is refused changes nothing' "$(tree)" "$before"

# --- queries --------------------------------------------------------------------------

before=$(tree)
expect_exit 0 list
expect_out 'smu_1  bash     5.2+smu1   running  cold        2024-03-01 10:15:02'
expect_out 'smu_2  bash     5.2+smu2   active   hot,single  -'
expect_exit 0 list --json
expect_json '[(r["patch_name"], r["pkg_name"], r["pkg_state"], r["pkg_state_name"]) for r in d["records"]]
    == [("smu_1", "bash", 6, "running"), ("smu_1", "tar", 6, "running"), ("smu_2", "bash", 4, "active")]' true
expect_json 'd["records"][0]["description"]' '"Corrects \"bash\" & more"'
expect_exit 0 list --state active --json
expect_json '[r["patch_name"] for r in d["records"]]' '["smu_2"]'
expect_exit 0 list --state active --state running --json
expect_json 'len(d["records"])' 3
expect_exit 0 list --package bash --patch smu_1 --json
expect_json 'len(d["records"])' 1
expect_exit 2 list --state Init --json
expect_exit 2 list --patch "' or '1'='1" --json
expect_exit 64 list --state broken
expect_exit 0 show smu_1
expect_out 'cur_pkg_path               /data/cmpnt/opkg/download/smu_1/bash.ipk'
expect_out 'pkg_state                  6 (running)'
expect_exit 0 show smu_1 --json
expect_json 'len(d["records"])' 2
is 'queries leave everything as it is' "$(tree)" "$before"

# --- what nobody should have written ----------------------------------------------------

sql "insert into pkg_upgrade_table(patch_name, pkg_name, description, pkg_state) values
    ('odd', 'a' || char(10) || char(27) || '[31m', cast(x'6375c3' as text), 99);
    insert into package_info_table(package_name, base_version, package_state)
    values('bash', '5.2', 2)"
expect_exit 0 list --patch odd --json
expect_json 'd["records"][0]["description"]' '"cu\ufffd"'
expect_json 'd["records"][0]["pkg_name"]' '"a\n\u001b[31m"'
expect_json 'd["records"][0]["cur_version"]' null
expect_json 'd["records"][0]["pkg_state_name"]' '"unknown (99)"'
expect_exit 0 list --patch odd
expect_out 'a??[31m'
expect_exit 0 show odd
expect_out 'cu?'
expect_exit 0 packages
expect_out 'bash     5.2           -                installed  -'
expect_exit 0 packages --package bash --state installed --json
expect_json '(d["records"][0]["package_name"], d["records"][0]["current_version"])
    == ("bash", None)' true

# --- deletion -----------------------------------------------------------------------------

expect_exit 64 record delete smu_1
expect_err '--yes'
expect_exit 0 record delete smu_1 --yes --json
expect_json 'd["records"]' 2
expect_exit 2 show smu_1

# --- a lock that is held, a database that is damaged ----------------------------------------

hold_lock
for command in list 'show odd' packages 'plan rollback odd' 'record state odd active'; do
    # shellcheck disable=SC2086 # words
    expect_exit 3 $command --lock-timeout 0
    expect_err "held by process $holder (python3)"
done
release_lock
expect_exit 0 list --lock-timeout 0

printf 'this is no database, however long one looks at it' >"$main_db"
expect_exit 4 list
expect_err 'cmpntctl db restore'
: >"$main_db"
expect_exit 4 list --json
expect_err 'no such table'
expect_exit 4 record state odd active
is 'nothing is copied over the backup' "$([[ -s $backup_db ]] && echo kept)" kept
expect_exit 1 init
expect_err 'the backup has some'
is 'nothing is made' "$(stat -c %s "$main_db")" 0
rm "$backup_db"
expect_exit 0 init --json
expect_json '[c["table"] for c in d["created"]]' '["package_info_table", "pkg_upgrade_table"]'

finish_tests
