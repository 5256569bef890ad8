#!/bin/bash
#
# device: roots in folders. Entering one takes namespaces inside the sandbox's.
# shellcheck disable=SC2016 # $ is for the shells inside

. "${BASH_SOURCE[0]%/*}/lib.sh" "$@"

cd "$work" || exit

# --- device new ---

expect_exit 0 device new root
expect_out 'cmpntctl device run root -- COMMAND'
for folder in var/lib/opkg var/cache/opkg/backup var/cache/opkg/download var/cache/opkg/debug \
    var/safe-verify/key data/cmpnt/opkg/download tmp opt; do
    is "the folder $folder" "$(stat -c %F "root/$folder")" directory
done
is 'the mode of tmp' "$(stat -c %a root/tmp)" 1777
mkdir empty
expect_exit 0 device new --json empty
expect_json 'd["directory"]' '"empty"'
expect_exit 1 device new root
expect_err 'root is not empty'
touch file
expect_exit 1 device new file
expect_err 'file is no folder'
expect_exit 1 device new file/below
expect_exit 64 device new
expect_exit 64 device

# --- what can be refused without entering one ---

expect_exit 2 device run missing -- true
expect_err 'no device root missing'
expect_exit 2 --device missing version compare 1 2
mkdir half && mkdir half/var
expect_exit 1 device shell half
expect_err 'it has no folder data'
expect_exit 64 device run root
mkdir tools && ln -s "$(type -P tr)" "$(type -P cp)" tools
PATH=$work/tools expect_exit 1 device run root -- /bin/true
expect_err 'bubblewrap'

# A bubblewrap that says what it was asked, and fails as where namespaces are refused.
mkdir refusing
printf '#!/bin/bash\nprintf "%%s\\n" "$@" >%q\nexit 1\n' "$work/asked" >refusing/bwrap
chmod +x refusing/bwrap
PATH=$work/refusing:$PATH expect_exit 1 device run root -- ls -l '*'
expect_err 'no device root can be entered on this machine'
asked=$(tr '\n' ' ' <asked)
for words in "--bind $work/root/var /var " "--bind $work/root/data /data " "--ro-bind-try /usr /usr " \
    '--unsetenv TMPDIR ' '--remount-ro / -- ls -l * '; do
    is "bubblewrap is told $words" "$([[ $asked == *"$words"* ]] && echo yes)" yes
done

# --- inside ---

if ! bwrap --ro-bind / / true 2>/dev/null; then
    echo 'no namespaces can be made here: nothing is run in a device root'
    finish_tests
fi

expect_exit 0 device run root -- touch /var/lib/opkg/made /tmp/made
is 'written in the root' "$(ls root/var/lib/opkg/made root/tmp/made)" \
    "$(printf '%s\n' root/tmp/made root/var/lib/opkg/made)"
is 'and not here' "$(ls /var/lib/opkg/made 2>/dev/null)" ''
rm root/var/lib/opkg/made root/tmp/made
expect_exit 1 device run root -- touch /usr/made
expect_exit 7 device run root -- sh -c 'exit 7'
expect_exit 137 device run root -- sh -c 'kill -9 $$'
expect_exit 1 device run root -- no-such-command
expect_err 'cannot run no-such-command'
expect_exit 0 device run root -- printf '%s|' -- --device x '* $x'
is 'arguments are handed on' "$out" '--|--device|x|* $x|'
expect_exit 0 device run root -- sh -c 'echo "$TMPDIR-"; pwd'
is 'no foreign temporary folder' "${out%%$'\n'*}" -
TMPDIR=/nowhere expect_exit 0 device run root -- cmpntctl version compare 1 2
is 'this program is there' "$out" older
SHELL=/bin/sh expect_exit 0 device shell root

# Any command in one.
expect_exit 0 --device root version compare 2 1
is 'the same answer' "$out" newer
expect_exit 0 --device root init
is 'the database lies in the root' "$(ls root/var/lib/opkg/cmpnt_upgrade.db3)" \
    root/var/lib/opkg/cmpnt_upgrade.db3
is 'and not here' "$(ls "$main_db" 2>/dev/null)" ''
expect_exit 2 hotpatch --device=root find --json 'Package:*#Is_hotpatch:1'
expect_json 'd["answers"]' '[]'
is 'nothing else is left in the root' "$(find root -name cmpntctl)" ''

# As somebody who is not root.
chmod 755 "$work"
if su -s /bin/sh nobody -c 'true' 2>/dev/null; then
    mkdir -m 777 theirs
    su -s /bin/sh nobody -c "'$cmpntctl' device new theirs/root &&
        '$cmpntctl' device run theirs/root -- touch /var/made" >"$work/theirs.log" 2>&1
    is 'an ordinary user enters' "$(stat -c %U theirs/root/var/made 2>&1)" nobody
fi

finish_tests
