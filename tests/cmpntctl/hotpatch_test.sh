#!/bin/bash
#
# hotpatch: the lookups.

. "${BASH_SOURCE[0]%/*}/lib.sh" "$@"

# The table as the library makes it; the columns that matter here are filled in.
make_records() {
    mkdir -p /var/lib/opkg /opt/bin
    echo 'the program' >/opt/bin/bash
    shipped=$(md5sum </opt/bin/bash) && shipped=${shipped%% *}
    python3 - "$main_db" "$shipped" <<'PYTHON'
import sqlite3
import sys

columns = """pkg_state card_id cur_flag op_flag patch_size patch_order patch_type patch_name pkg_name
    cur_pkg_path cur_version last_version description patch_ver patch_id effective_time last_patch
    hotpatch_file hotpatch_target hotpatch_target_path hotpatch_target_pkg_path hotpatch_target_md5
    hotpatch_target_strip_md5""".split()
db = sqlite3.connect(sys.argv[1])
have = [row[1] for row in db.execute("pragma table_info(pkg_upgrade_table)")]
def add(**values):
    named = {name: values.get(name, 0 if name in columns[:7] else "") for name in have}
    db.execute(f"insert into pkg_upgrade_table ({','.join(named)}) "
               f"values ({','.join('?' * len(named))})", list(named.values()))
add(patch_name="hp_bash", pkg_name="bash", pkg_state=4, op_flag=32, cur_pkg_path="/data/hp_bash.ipk",
    hotpatch_file="a:b#c.so", hotpatch_target="bash", hotpatch_target_path="/opt/bin/bash",
    hotpatch_target_md5=sys.argv[2], hotpatch_target_strip_md5="0" * 32)
add(patch_name="smu_1", pkg_name="sed", pkg_state=6, op_flag=1, cur_pkg_path="/data/sed.ipk")
db.commit()
PYTHON
}

# A question makes no database.
expect_exit 2 hotpatch find 'Package:*#Is_hotpatch:1'
expect_err 'no main database'
expect_exit 2 hotpatch check /data/hp_bash.ipk
is 'no database was made' "$(find / -xdev -name '*.db3')" ''

expect_exit 0 init
make_records || exit

expect_exit 0 hotpatch find 'Package:*#State:*#Is_hotpatch:1'
is 'one answer' "$out" 'Package:bash#State:active#Is_hotpatch:1'
expect_exit 0 hotpatch find --json 'Package:*#Hotpatch_file:*#Is_hotpatch:*#State:active'
expect_json 'd["answers"]' '[{"text": "Package:bash#Hotpatch_file:a:b#c.so#Is_hotpatch:1#State:active",
    "items": [{"key": "Package", "value": "bash"}, {"key": "Hotpatch_file", "value": "a:b#c.so"},
              {"key": "Is_hotpatch", "value": "1"}, {"key": "State", "value": "active"}]}]'
expect_exit 0 hotpatch find 'Package:*#Pkg_path:/data/sed.ipk'
is 'of any kind' "$out" 'Package:sed#Pkg_path:/data/sed.ipk'
expect_exit 2 hotpatch find --json 'Package:*#State:installed'
expect_json 'd["answers"]' '[]'

# Mistakes show at once, whatever the records.
for criteria in '' 'Package' 'Package:*' 'Package:bash' 'Package:*#Colour:red' 'Package:*#a:b:c' \
    'State:active#State:*' 'Package: *#State:active' 'Version:*#State:active' \
    'Package:*##State:active' "Package:*#State:$(printf '%1100s' x)" \
    "$(printf 'Package:*#%.0s' {1..31})State:active"; do
    expect_exit 64 hotpatch find "$criteria"
    expect_err 'the criteria'
done
expect_exit 0 hotpatch find 'State:*#State:active'

expect_exit 0 hotpatch check /data/hp_bash.ipk
expect_out '/opt/bin/bash: as shipped, may be patched'
echo 'changed' >>/opt/bin/bash
expect_exit 1 hotpatch check --json /data/hp_bash.ipk
expect_json 'd["state"]' '"changed"'
expect_json 'd["may_be_patched"]' false
rm /opt/bin/bash
expect_exit 1 hotpatch check /data/hp_bash.ipk
expect_out 'unreadable (No such file or directory), must not be patched'
expect_exit 2 hotpatch check /data/unknown.ipk
expect_err 'no record has the package path'
expect_exit 64 hotpatch check

hold_lock
expect_exit 3 hotpatch find --lock-timeout 0 'Package:*#Is_hotpatch:1'
expect_exit 3 hotpatch check --lock-timeout 0 /data/hp_bash.ipk
release_lock

# What is no database.
echo 'no database, whatever its name' >"$main_db"
expect_exit 1 hotpatch find 'Package:*#Is_hotpatch:1'
expect_err 'db check'
expect_exit 1 hotpatch check /data/hp_bash.ipk

finish_tests
