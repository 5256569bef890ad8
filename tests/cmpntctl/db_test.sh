#!/bin/bash
#
# The groups "db" and "lock": what a check finds and leaves alone, and that neither copy spoils a
# good file.
#
# shellcheck disable=SC2012 # the names are our own

. "${BASH_SOURCE[0]%/*}/lib.sh" "$@"

readonly server_db=/tmp/opkg/server/.cmpnt_server.db3
readonly auto_sync_db=/var/lib/opkg/cmpnt_auto_sync.db3
readonly upgrade_columns='patch_name text, pkg_name text, cur_pkg_path text, cur_version text,
    last_version text, pkg_state integer, card_id integer, cur_flag integer, op_flag integer,
    description text, patch_ver text, patch_id text, effective_time text, last_patch text,
    patch_size integer, patch_type integer, patch_order integer, hotpatch_file text,
    hotpatch_target text, hotpatch_target_path text, hotpatch_target_pkg_path text,
    hotpatch_target_md5 text, hotpatch_target_strip_md5 text'

sql() { sqlite3 "$@"; }

# What no check and no refused copy may change.
files() {
    find /var/lib /data /tmp/opkg -printf '%p %m %s %T@\n' | sort
    find /var/lib /data /tmp/opkg -type f -exec md5sum {} + | sort
}

upgrade() { # upgrade PATCH PACKAGE STATE [PATH]
    sql "$main_db" "insert into pkg_upgrade_table(patch_name, pkg_name, pkg_state, cur_pkg_path)
        values('$1', '$2', $3, '${4:-}')"
}

# Four good files, as the library lays them out.
new_device() {
    rm -rf /var/lib/opkg /var/cache/opkg /data/cmpnt /tmp/opkg
    mkdir -p /var/lib/opkg /data/cmpnt/opkg /tmp/opkg/server
    sql "$main_db" "create table package_info_table(package_name text, base_version text,
            current_version text, package_state integer, package_is_new integer,
            upgrade_count integer);
        create table pkg_upgrade_table($upgrade_columns);"
    sql "$auto_sync_db" "create table auto_sync_table($upgrade_columns)"
    sql "$server_db" 'create table server_table(sync_id integer, sync_flag integer)'
    upgrade smu_1 bash 4
    upgrade smu_1 tar 14
    upgrade smu_2 bash 0
    cp "$main_db" "$backup_db"
}

# What a writer leaves that is killed in the middle of a statement.
leave_journal() {
    python3 - "$main_db" <<'PYTHON'
import os, sqlite3, sys
database = sqlite3.connect(sys.argv[1])
database.execute("pragma cache_size = 1")
database.execute("pragma cache_spill = 1")
database.execute("update pkg_upgrade_table set pkg_state = 77")
database.executemany("insert into pkg_upgrade_table(patch_name) values(?)", [("x" * 900,)] * 200)
os.kill(os.getpid(), 9)
PYTHON
} 2>/dev/null

kinds() { expect_json '[[f["file"], f["kind"], f["severity"]] for f in d["findings"]]' "$1"; }

# --- check ------------------------------------------------------------------

expect_exit 2 db check
expect_err 'there is no database'
expect_err 'cmpntctl init'
is 'no file was made' "$(find /var /data -name '*.db3')" ''

new_device
before=$(files)
expect_exit 0 db check
expect_out 'No damage was found.'
expect_out 'The backup equals main.'
expect_exit 0 db check --json
kinds '[]'
expect_json '[d["damaged"], d["backup_equals_main"], d["depth"]]' '[false, true, "deep"]'
expect_json '[f["state"] for f in d["files"]]' '["good", "good", "good", "good"]'
expect_exit 0 db check --quick --json
expect_json 'd["depth"]' '"quick"'
is 'a check changes nothing' "$(files)" "$before"

# damage FILE KIND SEVERITY EXIT: what the next check is to find, and nothing else.
finds() {
    expect_exit "$1" db check --json
    kinds "$2"
}

: >"$backup_db"
finds 4 '[["backup", "empty", "damage"]]'
expect_exit 4 db check --quick
expect_out 'backup: the file has 0 bytes'
expect_out 'Next: cmpntctl db backup'

rm "$backup_db"
finds 0 '[["backup", "missing", "warning"]]'

new_device
rm "$main_db"
before=$(files)
finds 4 '[["main", "missing", "damage"]]'
expect_json 'd["backup_equals_main"]' null
is 'a lost main file is not made' "$(files)" "$before"
expect_exit 4 db check
expect_out 'Next: cmpntctl db restore'

new_device
rm "$server_db" "$auto_sync_db"
finds 0 '[["server", "missing", "note"], ["auto-sync", "missing", "note"]]'
: >"$server_db"
finds 0 '[["server", "empty", "warning"], ["auto-sync", "missing", "note"]]'

new_device
echo 'this is no database, but long enough to be one' >"$main_db"
finds 4 '[["main", "format", "damage"]]'

new_device
python3 -c 'import sys
with open(sys.argv[1], "r+b") as file:
    file.seek(4096 + 4096 + 3)
    file.write(b"\xff" * 40)' "$main_db"
expect_exit 4 db check --quick --json
expect_json '"integrity" in [f["kind"] for f in d["findings"]]' true

new_device
sql "$backup_db" 'drop table package_info_table'
finds 4 '[["backup", "table", "damage"]]'
new_device
sql "$auto_sync_db" 'alter table auto_sync_table rename column card_id to card'
finds 4 '[["auto-sync", "column", "damage"]]'
expect_json '"column 7 is" in d["findings"][0]["text"]' true
new_device
sql "$auto_sync_db" 'alter table auto_sync_table add column more text'
finds 4 '[["auto-sync", "column", "damage"]]'
new_device
sql "$server_db" 'alter table server_table drop column sync_flag'
finds 4 '[["server", "column", "damage"]]'

for state in -1 15 "'running'" null 4.5; do
    new_device
    upgrade smu_9 bash "$state"
    cp "$main_db" "$backup_db"
    finds 4 '[["main", "state", "damage"], ["backup", "state", "damage"]]'
done
expect_exit 4 db check --quick
expect_out 'smu_9 bash has the state 4.5'

new_device
upgrade smu_1 bash 4
cp "$main_db" "$backup_db"
finds 4 '[["main", "duplicate", "damage"], ["backup", "duplicate", "damage"]]'
expect_exit 4 db check
expect_out 'pkg_upgrade_table: smu_1 bash is there 2 times'
expect_exit 0 db check --quick

new_device
mkdir -p /opt/p && touch /opt/p/there.ipk
upgrade smu_3 bash 4 /opt/p/there.ipk
upgrade smu_3 tar 4 /opt/p/gone.ipk
upgrade smu_3 sed 4 /opt/p/gone.ipk
cp "$main_db" "$backup_db"
finds 0 '[["main", "package", "warning"]]'
expect_exit 0 db check
expect_out 'no package file /opt/p/gone.ipk'
for ((i = 0; i < 120; i++)); do
    echo "insert into pkg_upgrade_table(patch_name, pkg_state, cur_pkg_path)
        values('p$i', 1, '/opt/p/$i');"
done | sql "$main_db"
expect_exit 0 db check --json
expect_json '[len(d["findings"]), d["findings"][100]["text"]]' '[102, "and 21 more package files"]'

new_device
upgrade smu_3 bash 4
finds 0 '[["backup", "backup", "warning"]]'
expect_json '"1 rows are in main alone, 0 in the backup" in d["findings"][0]["text"]' true
new_device
sql "$main_db" "insert into package_info_table values('bash', '5', null, 2, 0, 0)"
finds 0 '[["backup", "backup", "note"]]'
expect_exit 0 db check --quick --json
kinds '[["backup", "backup", "note"]]'

new_device
leave_journal
is 'a journal is there' "$(test -s "$main_db-journal" && echo yes)" yes
before=$(files)
finds 4 '[["main", "journal", "damage"]]'
expect_json 'd["files"][0]["contents_checked"]' false
is 'the journal is left alone' "$(files)" "$before"
expect_exit 4 db check
expect_out 'Next: cmpntctl db backup'

new_device
: >"$main_db-journal"
before=$(files)
finds 0 '[["main", "journal", "warning"]]'
is 'an empty journal is left alone' "$(files)" "$before"

new_device
sql "$main_db" 'pragma journal_mode = wal' >/dev/null
rm -f "$main_db"-*
before=$(files)
finds 4 '[["main", "format", "damage"]]'
is 'write-ahead files are not made' "$(files)" "$before"

# --- backup -----------------------------------------------------------------

rm -rf /var/lib/opkg/*
expect_exit 2 db backup
new_device
upgrade smu_3 bash 4
expect_exit 0 db backup
expect_out "Copied $main_db"
cmp -s "$main_db" "$backup_db" || fail 'the backup is the copy'
echo stale >"$backup_db-journal"
expect_exit 0 db backup --json
expect_json 'd["journal_rolled_back"]' false
is 'a journal of the old backup is gone' "$(ls "$backup_db"-* 2>/dev/null)" ''

# shellcheck disable=SC2016 # evaluated below
for spoil in ': >"$main_db"' 'echo no database at all here >"$main_db"' \
    'sql "$main_db" "drop table pkg_upgrade_table"'; do
    new_device
    eval "$spoil"
    before=$(md5sum <"$backup_db")
    expect_exit 4 db backup
    expect_err 'is damaged, and not copied'
    is "the backup outlives: $spoil" "$(md5sum <"$backup_db")" "$before"
done

new_device
leave_journal
expect_exit 0 db backup
expect_out 'Rolled back'
is 'rolled back' "$(sql "$backup_db" 'select count(*), max(pkg_state) from pkg_upgrade_table')" '3|14'
expect_exit 0 db check

# Rows that are wrong do not keep a copy from being made, either way.
new_device
upgrade smu_1 bash 77
expect_exit 4 db check
expect_out 'Next: put the rows right'
expect_exit 0 db backup
rm "$main_db"
expect_exit 0 db restore --yes

new_device
rm -rf /data/cmpnt/opkg
expect_exit 1 db backup
expect_err 'See that its directory is there'

# --- restore ----------------------------------------------------------------

new_device
expect_exit 2 db restore --yes
expect_err 'the same already'
rm "$backup_db"
expect_exit 2 db restore --yes
expect_err "there is no $backup_db"

new_device
sql "$main_db" 'delete from pkg_upgrade_table'
chmod 640 "$main_db"
before=$(files)
expect_exit 64 db restore
expect_err 'Say --yes'
is 'nothing without an answer' "$(files)" "$before"
expect_exit 0 db restore --yes --json
expect_json 'd["journal_removed"]' false
cmp -s "$main_db" "$backup_db" || fail 'main is the backup'
is 'the mode is kept' "$(stat -c %a "$main_db")" 640
is 'nothing is left beside it' "$(ls -A /var/lib/opkg)" $'cmpnt_auto_sync.db3\ncmpnt_upgrade.db3'

rm "$main_db"
expect_exit 0 db restore --yes
cmp -s "$main_db" "$backup_db" || fail 'a lost main file is back'

new_device
leave_journal
expect_exit 0 db restore --yes
expect_out 'Removed the stale journal'
is 'restored, and nothing rolled back into it' \
    "$(sql "$main_db" 'pragma integrity_check; select count(*) from pkg_upgrade_table')" $'ok\n3'

# shellcheck disable=SC2016 # evaluated below
for spoil in ': >"$backup_db"' 'echo no database at all here >"$backup_db"' \
    'truncate -s 8192 "$backup_db"' 'echo hot >"$backup_db-journal"'; do
    new_device
    sql "$main_db" 'delete from pkg_upgrade_table'
    before=$(md5sum "$main_db")
    eval "$spoil"
    expect_exit 4 db restore --yes
    expect_err 'Main is as it was.'
    expect_exit 4 db restore # nobody is asked
    is "main outlives: $spoil" "$(md5sum "$main_db")" "$before"
    rm -f "$backup_db-journal"
done

# A failure in the middle: the place of the new file, then that of main, is taken by a directory.
new_device
sql "$main_db" 'delete from pkg_upgrade_table'
mkdir /var/lib/opkg/.cmpnt_upgrade.db3.new
before=$(files)
expect_exit 1 db restore --yes
expect_err 'is in the way'
is 'main is as it was' "$(files)" "$before"
rmdir /var/lib/opkg/.cmpnt_upgrade.db3.new
rm "$main_db" && mkdir "$main_db" && echo hot >"$main_db-journal"
expect_exit 1 db restore --yes
is 'the journal is back, the new file gone' "$(ls -A /var/lib/opkg | tr '\n' ' ')" \
    'cmpnt_auto_sync.db3 cmpnt_upgrade.db3 cmpnt_upgrade.db3-journal '

# --- lock -------------------------------------------------------------------

new_device
rm -f "$lock_file"
expect_exit 0 lock status
expect_out 'is free'
is 'no lock file is made' "$(ls "$lock_file" 2>/dev/null)" ''
hold_lock
expect_exit 0 lock status
expect_out "is held by process $holder (python3)"
expect_exit 3 lock status --check
expect_exit 0 lock status --json
expect_json 'd["holder"]' "{\"pid\": $holder, \"name\": \"python3\"}"
for command in 'db check' 'db backup' 'db restore --yes'; do
    # shellcheck disable=SC2086 # words
    expect_exit 3 $command --lock-timeout 0
    expect_err 'the database lock is held by process'
done
release_lock
expect_exit 0 lock status --check --json
expect_json '[d["held"], d["holder"]]' '[false, null]'

# A writer that does not know the database lock.
python3 -c 'import sqlite3, sys
database = sqlite3.connect(sys.argv[1])
database.execute("begin immediate")
open(sys.argv[2], "w").write("begun\n")
sys.stdin.read()' "$main_db" >(exec cat >"$work/begun") < <(exec sleep 100) &
writer=$!
until [[ -s $work/begun ]]; do :; done
for command in 'db backup' 'db restore --yes'; do
    # shellcheck disable=SC2086 # words
    expect_exit 3 $command
    expect_err "past the database lock, by process $writer (python3)"
done
kill "$writer"
wait "$writer" 2>/dev/null

finish_tests
