#!/bin/bash
#
# The groups "log" and "history".
#
# shellcheck disable=SC2012 # the names are our own

. "${BASH_SOURCE[0]%/*}/lib.sh" "$@"

readonly traces=/var/cache/opkg/debug
readonly history=/var/cache/opkg/.cmpntctl_history

files() { find "$traces" -type f ! -name '.cmpntctl*' -printf '%p %s %T@\n' | sort; }

messages() { expect_json '[e["message"] for e in d["entries"]]' "$1"; }

# --- show -------------------------------------------------------------------

expect_exit 2 log show
expect_out 'No such message'
expect_exit 2 log show --json
expect_json 'd["entries"]' '[]'
is 'no directory was made' "$(ls /var/cache 2>/dev/null)" ''

mkdir -p "$traces"
cat >"$traces/.cmpnt_upgrade.log_bak" <<'LOG'
[2024-03-01 10:15:02-000001, trace, begin-1]first
[2024-03-01 10:15:02-000004, error, open_sqlite-42]fourth
goes on
[and on, with a bracket
LOG
cat >"$traces/.cmpnt_upgrade.log" <<'LOG'
[2024-03-01 10:15:03-000001, major, end-3]cut in the middle[2024-03-01 10:15:03-000003, trace, end-4]the next
LOG
printf '%s\n' '[2024-03-01 10:15:02-000002, trace, f-1]second' \
    '[2024-03-01 10:15:02-000003, error, f-2]third' >"$traces/.client.log"
echo 'Installing bash' >"$traces/.cmpnt_upgrade_opkg.log"
echo 'no trace file' >"$traces/notes.txt"
before=$(files)

expect_exit 0 log show --json
messages '["first", "second", "third", "fourth\ngoes on\n[and on, with a bracket",
    "cut in the middle", "the next"]'
expect_json 'd["entries"][3]' '{"time": "2024-03-01 10:15:02.000004", "thread": "cmpnt_upgrade",
    "kind": "error", "function": "open_sqlite", "line": 42,
    "message": "fourth\ngoes on\n[and on, with a bracket"}'
expect_exit 0 log show
expect_out '2024-03-01 10:15:02.000004 error cmpnt_upgrade open_sqlite:42 fourth
    goes on
    [and on, with a bracket
2024-03-01 10:15:03.000001 major cmpnt_upgrade end:3 cut in the middle
'
expect_no_out Installing
expect_no_out $'\033'
expect_exit 0 log show --kind error --json
messages '["third", "fourth\ngoes on\n[and on, with a bracket"]'
expect_exit 0 log show --thread client --json
messages '["second", "third"]'
expect_exit 0 log show --lines 2 --json
messages '["cut in the middle", "the next"]'
expect_exit 0 log show --lines 0 --json
expect_json 'len(d["entries"])' 6
expect_exit 0 log show --thread cmpnt_upgrade_opkg --json
expect_json 'd["entries"]' '[{"time": null, "thread": "cmpnt_upgrade_opkg", "kind": null,
    "function": null, "line": null, "message": "Installing bash"}]'
expect_exit 2 log show --kind nothing
expect_exit 2 log show --thread nobody
expect_exit 64 log show --lines many
is 'showing changes nothing' "$(files)" "$before"

# What stands before the first stamp, and bytes that no terminal should be given.
printf 'cut off\n[2024-03-01 10:15:02-000009, err\033[2J, f-1]\033]0;x\007 \xff b\xc3\xa4d\n' \
    >"$traces/.odd.log"
expect_exit 0 log show --thread odd
expect_out 'cut off'
expect_out 'bäd'
expect_no_out $'\033'
expect_exit 0 log show --thread odd --json
expect_json 'd["entries"][0]["message"]' '"cut off"'
rm "$traces/.odd.log"

# A terminal of 80 columns has the date on a line of its own, and colours unless they are unwanted.
on_terminal() {
    out=$(python3 - "$@" <<'PYTHON'
import os, pty, sys
pid, fd = pty.fork()
if pid == 0:
    os.execvpe(sys.argv[2], sys.argv[2:], dict(os.environ, TERM="xterm", COLUMNS=sys.argv[1]))
text = b""
while True:
    try:
        more = os.read(fd, 65536)
    except OSError:
        more = b""
    if not more:
        break
    text += more
sys.stdout.write(text.decode().replace("\r\n", "\n"))
PYTHON
    )
    last="on a terminal: $*"
}
on_terminal 80 "$cmpntctl" log show --lines 1
expect_out $'--- 2024-03-01 ---\n10:15:03.000003 \033[2mtrace\033[0m cmpnt_upgrade end:4 the next'
on_terminal 200 "$cmpntctl" log show --kind error --lines 1
expect_out $'2024-03-01 10:15:02.000004 \033[31merror\033[0m cmpnt_upgrade'
NO_COLOR=1 on_terminal 200 "$cmpntctl" log show
expect_no_out $'\033'

# --- follow: the test writes, and reads what comes, with the rotation of a file between ----------

exec {followed}< <(exec "$cmpntctl" log follow --lines 1 --json 2>&1)
follower=$!
comes() {
    local line=''
    read -r -t 10 -u "$followed" line
    documents=$((documents + 1))
    printf '%s\n' "$line" >"$work/json/$documents.json"
    is 'what is followed' "$(jq_message <<<"$line")" "$1"
}
jq_message() { python3 -c 'import json, sys; print(json.load(sys.stdin)["message"])'; }
write() { printf '[2024-03-01 10:16:%s, trace, f-1]%s\n' "$2" "$3" >>"$traces/$1"; }

comes 'the next'
write .cmpnt_upgrade.log 00-000001 before
comes before
write .cmpnt_upgrade.log 00-000002 'last of the old'
mv "$traces/.cmpnt_upgrade.log" "$traces/.cmpnt_upgrade.log_bak"
write .cmpnt_upgrade.log 00-000003 'first of the new'
comes 'last of the old'
comes 'first of the new'
write .new_thread.log 00-000004 'of a new thread'
comes 'of a new thread'
: >"$traces/.new_thread.log"
write .new_thread.log 00-000005 anew
comes anew
kill "$follower"
exec {followed}<&-

# Whoever reads is gone: it ends by itself.
"$cmpntctl" log follow | head -1 >/dev/null &
reader=$!
wait "$reader"
is 'the end of a pipe' "$?" 0

# --- clear ------------------------------------------------------------------

expect_exit 64 log clear
expect_err 'Say --yes'
is 'nothing without an answer' "$(ls -A "$traces" | wc -l)" 6
touch "$traces/.cmpnt_upgrade_x"
expect_exit 0 log clear --yes --json
expect_json 'sorted(d["removed"])' '[".client.log", ".cmpnt_upgrade.log",
    ".cmpnt_upgrade.log_bak", ".cmpnt_upgrade_opkg.log", ".new_thread.log"]'
is 'what is left' "$(ls -A "$traces" | tr '\n' ' ')" '.cmpntctl.log notes.txt '
expect_exit 0 log show --thread cmpntctl
expect_out 'delete all log file'
rm "$traces/.cmpntctl.log"
expect_exit 2 log clear --yes
expect_err 'no trace files'

# --- history ----------------------------------------------------------------

expect_exit 0 history
expect_out 'log clear'
expect_exit 0 history --json
expect_json '[[e["operation"], e["code"]] for e in d["entries"]]' '[["log clear", 0]]'
expect_json 'len(d["entries"][0]["details"]["removed"])' 5
rm -f "$history"
expect_exit 2 history
expect_exit 2 history --json
expect_json 'd["entries"]' '[]'
is 'asking makes no file' "$(ls "$history" 2>/dev/null)" ''

# What fails is recorded as well; what was not begun is not, nor are queries.
expect_exit 2 db backup
mkdir -p /var/lib/opkg && : >"$main_db"
expect_exit 4 db backup
expect_exit 4 db check
expect_exit 0 history --json
expect_json '[[e["operation"], e["code"]] for e in d["entries"]]' '[["db backup", 4]]'
expect_exit 0 history --operation 'db backup'
expect_exit 2 history --operation rollback

# A torn line, and one of something else.
printf 'no JSON\n{"operation": "torn' >>"$history"
expect_exit 4 db backup
expect_exit 0 history --json
expect_json 'len(d["entries"])' 2
expect_exit 0 history --lines 1 --json
expect_json 'len(d["entries"])' 1

# A full file makes room, and its lines are still listed.
python3 -c 'print("{\"operation\": \"old\"}\n" * 14000)' >"$history"
expect_exit 4 db backup
is 'a file with room' "$(wc -l <"$history")" 1
expect_exit 0 history --lines 0
expect_out old
expect_out 'db backup'

# A history that cannot be written fails nothing.
rm -f "$history"* && mkdir "$history"
expect_exit 4 db backup
expect_exit 2 history
rmdir "$history" && mkfifo "$history"
expect_exit 4 db backup
rm "$history"

finish_tests
