#!/bin/bash
#
# plan rollback and rollback.

# shellcheck source=tests/cmpntctl/lib.sh
. "${BASH_SOURCE[0]%/*}/lib.sh" "$@"

readonly download=/data/cmpnt/opkg/download installed=/opt/packages

sql() {
    python3 -c 'import sqlite3, sys
db = sqlite3.connect(sys.argv[1])
db.executescript(sys.argv[2])
db.commit()' "$main_db" "$1"
}

# One of each decision: to a file of another patch, to a base file, base kept, removed.
lay_out() {
    rm -rf /var/lib/opkg /data/cmpnt /var/cache/opkg "$installed"
    mkdir -p "$download" /var/cache/opkg/backup "$installed"
    ctl init
    echo 'bash 1' >"$download/bash_1.ipk"
    echo 'tar base' >/var/cache/opkg/backup/tar_1.34.ipk
    local package
    for package in bash tar grep diag; do
        echo "$package 2" >"$installed/$package.ipk"
    done
    sql "insert into package_info_table(package_name, base_version, package_state) values
        ('bash', '5.2', 6), ('tar', '1.34', 6), ('grep', '3.8', 6);
        insert into pkg_upgrade_table(patch_name, pkg_name, cur_version, pkg_state, cur_pkg_path,
            effective_time, op_flag, card_id, cur_flag) values
        ('smu_1', 'bash', '5.2+smu1', 6, '$download/bash_1.ipk', 'then', 0, 0, 0),
        ('smu_2', 'bash', '5.2+smu2', 4, '$download/bash_2.ipk', 'now', 0, 0, 0),
        ('smu_2', 'tar', '1.34+smu2', 4, '$download/tar_2.ipk', 'now', 0, 0, 0),
        ('smu_2', 'grep', '3.8+smu2', 4, '$download/grep_2.ipk', 'now', 0, 0, 0),
        ('smu_2', 'diag', '1.0', 4, '$download/diag_1.ipk', 'now', 0, 0, 0),
        ('smu_3', 'sed', '4.8', 2, '$download/sed.ipk', '', 0, 0, 0);"
}

lay_out
before=$(tree)
expect_exit 0 plan rollback smu_2 --json
expect_json '{p["pkg_name"]: p["decision"] for p in d["packages"]}' \
    '{"bash": "put_file", "tar": "put_file", "grep": "keep_base", "diag": "remove"}'
expect_json '[p["file"] for p in d["packages"]]' \
    "[\"$download/bash_1.ipk\", \"/var/cache/opkg/backup/tar_1.34.ipk\", null, null]"
expect_json '[p["target_version"] for p in d["packages"]]' '["5.2+smu1", "1.34", "3.8", null]'
expect_exit 0 plan rollback smu_2
expect_out "  -> $download/bash_1.ipk"
expect_out 'the newest upgrade still in force: smu_1'
expect_out '  -> keep the base package'
expect_out '  -> remove'
expect_exit 2 plan rollback smu_3 --json
expect_json 'd["packages"][0]["decision"]' '"skip"'
expect_exit 2 plan rollback smu_9
expect_err 'no record has the patch'
is 'a plan changes nothing' "$(tree)" "$before"

# --- what is refused changes nothing -------------------------------------------------------

expect_exit 64 rollback smu_2
expect_err 'Say --yes'
expect_out "  -> $download/bash_1.ipk"
expect_exit 1 rollback smu_2 --yes --install-dir /opt/missing
expect_err 'is no folder'
expect_exit 64 rollback smu_2 --yes --install-dir '/opt/a b'
expect_exit 2 rollback smu_3 --yes
expect_err 'not in force'
mv "$download/bash_1.ipk" "$download/bash_0.ipk"
expect_exit 1 plan rollback smu_2 --json
expect_json 'd["packages"][0]["decision"]' '"blocked"'
expect_exit 1 rollback smu_2 --yes
expect_err 'nothing was changed'
mv "$download/bash_0.ipk" "$download/bash_1.ipk"
is 'what is refused changes nothing' "$(tree)" "$before"

# --- done, with its files ---------------------------------------------------------------------

expect_exit 0 rollback smu_2 --yes --install-dir "$installed" --json
expect_json 'd["install_dir"]' "\"$installed\""
expect_err 'bash: in place and recorded'
is 'the newest upgrade still in force' "$(<"$installed/bash.ipk")" 'bash 1'
is 'the base file' "$(<"$installed/tar.ipk")" 'tar base'
is 'the others are gone' "$(ls -A "$installed")" $'bash.ipk\ntar.ipk'
expect_exit 0 show smu_2 --json
expect_json '{(r["pkg_state_name"], r["effective_time"]) for r in d["records"]} == {("installed", "")}' true
expect_exit 0 show smu_1 --json
expect_json '[(r["pkg_state_name"], r["effective_time"]) for r in d["records"]] == [("running", "then")]' true
expect_exit 0 packages --json
expect_json '[(r["package_name"], r["current_version"], r["package_state"]) for r in d["records"]]
    == [("bash", "5.2+smu1", 6), ("tar", "1.34", 6), ("grep", "3.8", 6)]' true
expect_exit 2 rollback smu_2 --yes
expect_err 'nothing to do'

# --- the records alone ----------------------------------------------------------------------------

lay_out
expect_exit 0 rollback smu_2 --yes
expect_out 'No --install-dir'
expect_out 'rolled back smu_2'
is 'no file is touched' "$(cat "$installed"/*)" $'bash 2\ndiag 2\ngrep 2\ntar 2'
expect_exit 0 list --patch smu_2 --state installed --json
expect_json 'len(d["records"])' 4

# --- names that would be something else in SQL or a path ---------------------------------------------

lay_out
sql "update pkg_upgrade_table set pkg_name = '../evil' where pkg_name = 'diag'"
expect_exit 1 rollback smu_2 --yes --install-dir "$installed"
expect_err 'cannot be rolled back'
expect_out 'is a path'
is 'nothing was put in place' "$(cat "$installed"/*)" $'bash 2\ndiag 2\ngrep 2\ntar 2'

# --- a folder that takes no file --------------------------------------------------------------------

lay_out
mkdir "$installed/.tar.ipk.new"
expect_exit 1 rollback smu_2 --yes --install-dir "$installed"
expect_err 'nothing was changed'
expect_exit 0 list --patch smu_2 --state active --json
expect_json 'len(d["records"])' 4

finish_tests
