#!/bin/bash
#
# verify and whitelist, with packages that are really signed.

. "${BASH_SOURCE[0]%/*}/lib.sh" "$@"

readonly maker=$tests_folder/../../tools/package-maker/cmpnt-package
readonly download=/data/cmpnt/opkg/download
readonly base=$download/diag_1.0.ipk
readonly patch=$download/patch_diag/diag_1.0-fix1.deb
readonly key=/var/safe-verify/key/korvel_sm2_public.pem
readonly unpacked=/var/cache/opkg/cmpnt_safe_verify/safe_data_tmp

make_tree() {
    mkdir -p "$1/usr/bin" "$1/usr/lib" "$1/usr/share/diag"
    echo 'echo diagnostics' >"$1/usr/bin/diag"
    echo 'echo scratch' >"$1/usr/bin/scratch"
    echo 'library' >"$1/usr/lib/libdiag.so.1"
    ln -sf libdiag.so.1 "$1/usr/lib/libdiag.so"
    echo 'help' >"$1/usr/share/diag/help"
}

make_packages() {
    cd "$work" || exit
    make_tree tree
    mkdir -p "$download/patch_diag"
    "$maker" key vendor.pem && "$maker" global --white /usr/bin/scratch / vendor.pem tree &&
        "$maker" package "$patch" tree || exit
    echo 'corrects the diagnostics' >smu_diag.txt
    "$maker" patch "$download/patch_diag" vendor.pem smu_diag.txt || exit
    # One more program than the list knows.
    echo 'echo more' >tree/usr/bin/more-diag
    "$maker" package "$base" tree || exit
}

switch_on() { touch /var/cache/opkg/.cmpnt_safe_verify_config; }

expect_exit 2 verify /data/no_1.0.ipk
expect_out 'unreadable   No such file or directory'
mkdir -p /var/cache/opkg
make_packages >"$work/made" 2>&1

# Off, nothing is checked, and it is said so.
expect_exit 0 verify "$base" "$patch"
expect_out "$base      "
expect_out ' not checked  verification is off'
expect_exit 1 verify --strict "$base"
expect_exit 0 verify --json "$base"
expect_json 'd["files"][0]["verdict"]' '"not checked"'

switch_on
expect_exit 0 verify --strict "$base" "$patch"
expect_out 'passed'
expect_no_out 'not checked'
cd "$download" || exit
expect_exit 0 verify diag_1.0.ipk patch_diag/diag_1.0-fix1.deb
is 'no unpacked files' "$([[ -e $unpacked ]] && echo there)" ''

# What the library knows nothing of.
touch image.bin noname
expect_exit 0 verify image.bin
expect_out 'not checked  only .ipk and .deb are checked, and its suffix is .bin'
expect_exit 1 verify --strict image.bin
expect_exit 1 verify noname
expect_out 'refused      its name has no suffix'
expect_exit 1 verify "$download"
expect_out 'is a folder'

# Nothing is run by a shell.
# shellcheck disable=SC2016 # not to be expanded
expect_exit 64 verify "$base" '/data/$(touch pwned).ipk'
expect_err 'misread'
is 'nothing on standard output' "$out" ''
expect_exit 64 verify '/data/x;touch pwned;.ipk'
expect_exit 64 verify "/data/it's.ipk"
is 'nothing was run' "$(find / -xdev -name 'pwned*' 2>/dev/null)" ''
expect_exit 64 verify
expect_err 'Try: cmpntctl verify --help'

# In words.
expect_exit 0 verify --explain --json "$base" "$patch"
expect_json 'd["files"][0]["explanation"]["signature_state"]' '"valid"'
expect_json 'd["files"][0]["explanation"]["whitelist_state"]' '"valid"'
expect_json 'd["files"][0]["explanation"]["files"]' '{"listed": 2, "refused": 0,
    "dynamically_whitelisted": 0, "whitelisted": 1, "unlisted": 1, "links": 1, "elsewhere": 1,
    "refused_files": []}'
expect_json 'd["files"][1]["explanation"]["package_state"]' '"listed"'
expect_json 'd["files"][1]["explanation"]["smu_files"]' '[{"file": "smu_diag.txt", "state": "listed"}]'
expect_exit 0 verify --explain "$base"
expect_out "$base: passed"
expect_out "signature     /var/safe-verify/signature/global-sm2.sign: valid"
expect_out '1 file in trusted directories but on no list: pass unchecked'
is 'no unpacked files' "$(find /tmp -name 'cmpntctl-verify*')" ''

# A changed file in the package.
cp "$base" "$work/good.ipk"
echo 'echo changed' >"$work/tree/usr/bin/diag"
"$maker" package "$base" "$work/tree" >/dev/null
expect_exit 1 verify "$patch" "$base" image.bin
expect_out 'refused      cmpnt_global_hash_file_verify: (/usr/bin/diag) do_verify_signature fail ret(1).'
expect_out 'passed'
expect_exit 1 verify --explain --json "$base"
expect_json 'd["files"][0]["explanation"]["files"]["refused_files"]' '["/usr/bin/diag"]'
expect_json 'd["files"][0]["errors"][-1]' '"cmpnt_safe_verify: cmpnt_hash_file_verify fail"'
expect_exit 1 verify --explain "$base"
expect_out '1 file listed with another digest'
expect_out 'cmpnt_safe_verify: cmpnt_hash_file_verify fail'
# ... which spoils nothing for the next one.
expect_exit 0 verify "$work/good.ipk"
# ... and passes where the verification service says so.
echo '/usr/bin/diag,diag_server' >/var/safe-verify/sm3/global-d-white-sm3.hash
expect_exit 0 verify --explain --json "$base"
expect_json 'd["files"][0]["explanation"]["files"]["dynamically_whitelisted"]' 1
cp "$work/good.ipk" "$base"

# The trace is read on where it was renamed to its backup.
head -c 262200 /dev/zero | tr '\0' '\n' >>/var/cache/opkg/debug/.cmpntctl.log
echo changed >>"$download/patch_diag/smu_diag.txt"
expect_exit 1 verify --explain --json "$patch"
expect_json 'len(d["files"][0]["errors"])' 3
expect_json 'd["files"][0]["explanation"]["smu_files"][0]["state"]' '"wrong"'

# Another key.
cp "$key" "$work/key" && "$maker" key "$work/foreign.pem" >/dev/null && cp "$work/foreign.pem.pub" "$key"
expect_exit 1 verify --explain --json "$base" "$patch"
expect_json '[f["explanation"]["signature_state"] for f in d["files"]]' '["wrong", "wrong"]'
rm "$key"
expect_exit 1 verify --explain "$base"
expect_out "missing: $key"
expect_out 'not looked at: that takes a valid list'
cp "$work/key" "$key"

# No package at all.
echo 'no archive' >"$download/no_1.0.ipk"
expect_exit 1 verify --explain "$download/no_1.0.ipk"
expect_out 'cannot be unpacked'

# --- whitelist test ---

expect_exit 0 whitelist test /usr/bin/scratch --json
expect_json '[d["is_trusted"], d["is_checked"]]' '[true, true]'
expect_json 'd["global"]["is_listed"]' true
expect_json 'd["global"]["lines"]' '[{"number": 1, "path": "/usr/bin/scratch"}]'
expect_json 'd["dynamic"]["is_listed"]' false
expect_exit 0 whitelist test /usr/bin/scr
expect_out 'yes, by line 1, of which it is the beginning: /usr/bin/scratch'
expect_exit 0 whitelist test /usr/bin/diag
expect_out 'dynamic whitelist  yes, by line 1 of the client diag_server'
expect_exit 2 whitelist test /opt/thing
expect_out 'trusted directory  no'
expect_exit 2 whitelist test /binx --json
expect_json 'd["is_trusted"]' true
expect_json 'd["is_checked"]' false
rm /var/safe-verify/signature/global-white-sm2.sign
expect_exit 2 whitelist test /usr/bin/scratch
expect_out 'has no signature and counts for nothing'
rm -r /var/safe-verify
expect_exit 2 whitelist test /usr/bin/scratch
expect_exit 64 whitelist test usr/bin/scratch
expect_exit 64 whitelist test

finish_tests
