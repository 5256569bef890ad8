#!/bin/bash
#
# version, control, md5 and space.

. "${BASH_SOURCE[0]%/*}/lib.sh" "$@"

cd "$work" || exit

# --- version compare ---

expect_exit 0 version compare 1.10 1.9
is 'newer' "$out" newer
expect_exit 0 version compare 1.0~rc1 1.0
is 'older' "$out" older
expect_exit 0 version compare --json 1.0 1.0
expect_json 'd["result"]' '"equal"'
expect_exit 64 version compare 1.0
expect_exit 64 version

# --- control show ---

cat >control <<'CONTROL'
Package: diag
Version: 1.0-fix1
Architecture: all
Serial: 7
Card_type: LC48
Description: corrects the diagnostics

CONTROL
chmod 0444 control
before=$(stat -c '%y %z %a' control; md5sum control)
expect_exit 0 control show control
expect_out 'Package         diag'
expect_out 'Card_type       LC48'
expect_exit 0 control show --json "$work/control"
expect_json '[d["package"], d["version"], d["architecture"]]' '["diag", "1.0-fix1", "all"]'
expect_json 'd["description"]' '"corrects the diagnostics"'
is 'the file is as it was' "$(stat -c '%y %z %a' control; md5sum control)" "$before"
is 'no copy is left' "$(find /tmp -name 'cmpntctl-control*')" ''
echo 'Nothing: of interest' >other
expect_exit 2 control show other
expect_err 'names no package'
expect_exit 2 control show missing
expect_err 'missing: No such file or directory'
expect_exit 1 control show .
expect_err 'is a folder'
mkfifo pipe
expect_exit 1 control show pipe
head -c 2000000 /dev/zero >large
expect_exit 1 control show large
expect_err 'too large'

# --- md5 ---

printf 'abc' >abc
: >'with blank'
expect_exit 0 md5 abc 'with blank'
is 'as md5sum has it' "$out" "$(md5sum abc 'with blank')"
printf 'x' >'back\slash'
expect_exit 0 md5 'back\slash'
is 'escaped as md5sum does it' "$out" "$(md5sum 'back\slash')"
expect_exit 0 md5 --json abc
expect_json 'd["files"]' '[{"file": "abc", "md5": "900150983cd24fb0d6963f7d28e17f72"}]'
expect_exit 2 md5 abc missing
expect_out '900150983cd24fb0d6963f7d28e17f72  abc'
expect_err 'missing: No such file or directory'
expect_exit 1 md5 missing . pipe --json
expect_json '[f.get("error") for f in d["files"]]' \
    '["No such file or directory", "is a folder", "is no regular file"]'
expect_exit 64 md5

# --- space ---

expect_exit 0 space /tmp
expect_out '/tmp: '
expect_out ' KiB available'
expect_exit 0 space /tmp --json
expect_json 'd["total_kbytes"] >= d["available_kbytes"] > 0' true
expect_exit 2 space /missing
expect_err '/missing: No such file or directory'

finish_tests
