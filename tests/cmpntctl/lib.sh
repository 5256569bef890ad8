# shellcheck shell=bash
#
# What the end-to-end tests of cmpntctl share; to be sourced:
#
#   . "${BASH_SOURCE[0]%/*}/lib.sh" "$@"      # the test is given the path of cmpntctl
#   ctl ARGUMENT...                           # runs it: sets $status, $out and $err
#   expect_exit 2 list                        # runs it, and expects the exit code
#   expect_out 'text', expect_err 'text'      # of the last run: the text occurs
#   expect_json '.records | length' 3         # of the last run: an expression has this value
#   is 'what' "$found" "$expected"
#   finish_tests                              # at the end: checks all JSON against the schema
#
# Every run with --json is kept, and its document held against the schema by finish_tests.

set -uo pipefail

if [[ ! -e /.cmpnt-sandbox ]]; then
    echo 'this test writes on the fixed paths of a device: start it with scripts/sandbox' >&2
    exit 70
fi

readonly cmpntctl=${1:?the path of cmpntctl}
tests_folder=$(cd "${BASH_SOURCE[0]%/*}" && pwd)
readonly tests_folder
readonly schema=$tests_folder/../../tools/cmpntctl/schema/cmpntctl.schema.json
# Under /opt, which no command touches by itself.
readonly work=/opt/cmpntctl-test
# shellcheck disable=SC2034 # for the tests
readonly main_db=/var/lib/opkg/cmpnt_upgrade.db3
# shellcheck disable=SC2034 # for the tests
readonly backup_db=/data/cmpnt/opkg/cmpnt_upgrade_backup.db3
readonly lock_file=/tmp/.cmpnt_db_lock

mkdir -p "$work/json"
status=0 out='' err='' last='' failures=0 checks=0 documents=0
# Nothing of the one who starts the tests.
export LANG=C.UTF-8
unset COLUMNS NO_COLOR

fail() {
    failures=$((failures + 1))
    printf 'FAILED: %s (line %s)\n' "$1" "${BASH_LINENO[-2]}" >&2
    shift
    printf '    %s\n' "$@" >&2
}

ctl() {
    last="cmpntctl $*"
    "$cmpntctl" "$@" >"$work/out" 2>"$work/err" </dev/null
    status=$?
    out=$(tr -d '\0' <"$work/out")
    err=$(tr -d '\0' <"$work/err")
    if [[ " $* " == *' --json '* && -s $work/out ]]; then
        documents=$((documents + 1))
        cp "$work/out" "$work/json/$documents.json"
    fi
}

expect_exit() {
    local expected=$1
    shift
    ctl "$@"
    checks=$((checks + 1))
    [[ $status == "$expected" ]] ||
        fail "$last: exit code $status, and not $expected" "standard output: $out" \
            "standard error: $err"
}

expect_out() {
    checks=$((checks + 1))
    [[ $out == *"$1"* ]] || fail "$last: no '$1' on standard output" "$out" "$err"
}

expect_no_out() {
    checks=$((checks + 1))
    [[ $out != *"$1"* ]] || fail "$last: '$1' on standard output" "$out"
}

expect_err() {
    checks=$((checks + 1))
    [[ $err == *"$1"* ]] || fail "$last: no '$1' on standard error" "$err"
}

is() {
    checks=$((checks + 1))
    [[ $2 == "$3" ]] || fail "$1" "found    $2" "expected $3"
}

# expect_json EXPRESSION VALUE: EXPRESSION is Python's, "d" is the last document; VALUE is JSON.
expect_json() {
    local found
    found=$(python3 -c 'import json, sys
d = json.load(open(sys.argv[1]))
print("same" if eval(f"({sys.argv[2]})") == json.loads(sys.argv[3]) else json.dumps(eval(f"({sys.argv[2]})")))
' "$work/out" "$1" "$2" 2>&1)
    is "$last: $1" "$found" same
}

# All files below the private folders with their content, but for what every look at the database
# leaves: the lock file and the trace.
tree() {
    find /var /data /tmp -type f ! -path "$lock_file" ! -path '/var/cache/opkg/debug/.cmpntctl*' \
        -printf '%p %m %T@ ' -exec md5sum {} + | sort
    find /var /data /tmp -type d ! -path '/var/cache/opkg/debug' ! -path '/var/cache/opkg' \
        ! -path '/var/cache' | sort
}

# hold_lock: another process takes the database lock; release_lock ends it.
hold_lock() {
    local fd_file=$work/holder
    rm -f "$fd_file" && mkfifo "$fd_file"
    python3 -c 'import fcntl, os, sys
fd = os.open(sys.argv[1], os.O_RDWR | os.O_CREAT, 0o777)
fcntl.lockf(fd, fcntl.LOCK_EX)
open(sys.argv[2], "w").write("held\n")
sys.stdin.read()' "$lock_file" "$fd_file" < <(exec sleep 100) &
    holder=$!
    read -r _ <"$fd_file"
}

release_lock() {
    kill "$holder"
    wait "$holder" 2>/dev/null
}

check_documents() {
    python3 - "$schema" "$work"/json/*.json <<'PYTHON'
import json
import sys

import jsonschema

with open(sys.argv[1], encoding="utf-8") as file:
    schema = json.load(file)
kind = jsonschema.validators.validator_for(schema)
kind.check_schema(schema)
validator = kind(schema)
known = {name.replace("_", " ") for name in schema["$defs"]}
bad = 0
for path in sys.argv[2:]:
    with open(path, encoding="utf-8") as file:
        document = json.load(file)
    command = document.get("command")
    definition = {"$defs": schema["$defs"], "$ref": f"#/$defs/{str(command).replace(' ', '_')}"}
    errors = list(validator.iter_errors(document))
    if command not in known:
        errors = [f"the schema does not know the command {command!r}"]
    elif errors:
        errors = list(kind(definition).iter_errors(document)) or errors
    for error in errors:
        bad += 1
        print(f"the schema does not hold for {command}: {error}", file=sys.stderr)
sys.exit(bad != 0)
PYTHON
}

finish_tests() {
    ((documents == 0)) || check_documents || fail 'JSON against the schema'
    printf '%d checks, %d documents, %d failures\n' "$checks" "$documents" "$failures"
    ((failures == 0)) && exit 0
    exit 1
}
