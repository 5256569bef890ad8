#!/bin/bash
#
# Makes packages and lists, and looks at them with openssl and tar alone.
#
# usage: cmpnt-package_test.sh MAKER
set -euo pipefail

maker=$(readlink -f -- "${1:?which package maker?}")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

failures=0

# expect WHAT COMMAND...: the command succeeds.
expect() {
    local what=$1
    shift
    if ! "$@"; then
        printf 'FAILED: %s\n' "$what"
        failures=$((failures + 1))
    fi
}

# The maker ends with STATUS, and says TEXT on the standard error.
refuses() {
    local status=$1 text=$2 result=0
    shift 2
    "$maker" "$@" >out 2>err || result=$?
    expect "exit status $status, not $result: $*" [ "$result" = "$status" ]
    expect "'$text' said, not '$(<err)': $*" grep -qF -- "$text" err
}

is_text() {
    [[ $(cat -- "$1" && echo x) == "$2"x ]]
}

sm3() {
    openssl dgst -sm3 -r "$1" | cut -c -64
}

# is_signed KEY FILE SIGNATURE [ID]
is_signed() {
    openssl pkeyutl -verify -rawin -digest sm3 -pkeyopt "distid:${4:-1234567812345678}" -pubin \
        -inkey "$1" -in "$2" -sigfile "$3" >/dev/null 2>&1
}

fails() {
    ! "$@"
}

make_tree() {
    mkdir -p "$1"/usr/bin "$1"/etc/{init.d,rc.d}
    echo one >"$1/usr/bin/one"
    echo start >"$1/etc/init.d/net"
    ln -s ../init.d/net "$1/etc/rc.d/S10net"
    ln -s one "$1/usr/bin/uno"
}

test_usage() {
    refuses 64 usage:
    refuses 64 'no command make' make
    refuses 64 'no option --white-list' --white-list
    refuses 64 'takes a value' --id
    refuses 64 'takes a value' key k --white
    refuses 64 'other arguments' key
    refuses 64 'other arguments' key a b c
    refuses 64 'other arguments' package a_1.ipk
    refuses 64 'other arguments' patch folder
    refuses 64 'other arguments' global root key
    refuses 64 'other arguments' sign key file
    refuses 64 'goes with global' --white /bin/a key k
    "$maker" --help >help 2>err
    expect 'the help is standard output' grep -q '^usage: cmpnt-package' help
    expect 'and nothing else' is_text err ''
    expect 'nothing was made' [ "$(ls)" = "$(printf '%s\n' err help out)" ]
}

# What the help gives as an example works.
test_example() {
    mkdir example bin
    ln -s "$maker" bin/cmpnt-package
    sed -n '/^An example/,/^Exit status/p' help | sed -n 's/^  //p' >example.sh
    expect 'an example is given' [ "$(grep -c cmpnt-package example.sh)" = 5 ]
    expect 'the example works' env PATH="$PWD/bin:$PATH" bash -ec 'cd example && . ../example.sh'
    expect 'its list is signed' is_signed example/vendor.pem.pub \
        example/smu_hello/patch-sm3.hash example/smu_hello/patch-sm2.sign
}

test_key() {
    "$maker" key keys/vendor.pem
    "$maker" key other.pem published.pem
    expect 'a private key is private' [ "$(stat -c %a keys/vendor.pem)" = 600 ]
    expect 'the curve is SM2' grep -q SM2 <(openssl pkey -in keys/vendor.pem -noout -text)
    expect 'the public key belongs to it' \
        cmp keys/vendor.pem.pub <(openssl pkey -in keys/vendor.pem -pubout)
    expect 'its name can be chosen' cmp published.pem <(openssl pkey -in other.pem -pubout)
    cp keys/vendor.pem before
    refuses 1 'exists' key keys/vendor.pem
    expect 'a key is not replaced' cmp before keys/vendor.pem
}

test_sign() {
    echo data >file
    "$maker" sign keys/vendor.pem file signatures/file
    expect 'a file is signed' is_signed keys/vendor.pem.pub file signatures/file
    expect 'by this key' fails is_signed published.pem file signatures/file
    "$maker" sign --id me@example.org keys/vendor.pem file signatures/file
    expect 'with another identifier' is_signed keys/vendor.pem.pub file signatures/file \
        me@example.org
    expect 'not with the default one' fails is_signed keys/vendor.pem.pub file signatures/file

    openssl genpkey -algorithm EC -pkeyopt ec_paramgen_curve:P-256 -out p256.pem 2>/dev/null
    refuses 1 'cannot sign with p256.pem' sign p256.pem file bad
    refuses 1 'cannot sign with file' sign file file bad
    refuses 1 'there is no file missing' sign keys/vendor.pem missing bad
    expect 'no signature is left' [ ! -e bad ]
}

test_package() {
    make_tree tree
    "$maker" package one_1.0-2.ipk tree
    mkdir unpacked data control
    tar -xf one_1.0-2.ipk -C unpacked
    tar -xf unpacked/data.tar.gz -C data
    tar -xf unpacked/control.tar.gz -C control
    expect 'the members' \
        [ "$(echo unpacked/*)" = "$(echo unpacked/{control.tar.gz,data.tar.gz,debian-binary})" ]
    expect 'the format' is_text unpacked/debian-binary $'2.0\n'
    expect 'all files of the tree' diff -r --no-dereference tree data
    expect 'the control file' is_text control/control \
        $'Package: one\nVersion: 1.0-2\nArchitecture: all\nDescription: one 1.0-2\n'
    "$maker" package one_1.0_armhf.deb tree
    tar -xOf one_1.0_armhf.deb control.tar.gz | tar -xzO ./control >control/deb
    expect 'the architecture' grep -qx 'Architecture: armhf' control/deb

    "$maker" --field 'Depends: tar, gzip' --field 'Description: of one' package two_2.0.ipk tree
    tar -xOf two_2.0.ipk control.tar.gz | tar -xzO ./control >control/fields
    expect 'fields' is_text control/fields \
        $'Package: two\nVersion: 2.0\nArchitecture: all\nDepends: tar, gzip\nDescription: of one\n'
    refuses 64 "is no line 'Field: value'" --field Depends package two_3.0.ipk tree
    refuses 64 "is no line 'Field: value'" --field $'A: b\nC: d' package two_3.0.ipk tree
    refuses 64 '--field goes with package' --field 'A: b' sign keys/vendor.pem file signature

    cp -r tree later && touch -d '2001-01-01' later/usr/bin/*
    mkdir elsewhere && "$maker" package elsewhere/one_1.0-2.ipk later
    expect 'the same files make the same package' cmp one_1.0-2.ipk elsewhere/one_1.0-2.ipk

    local name
    for name in one.ipk _1.ipk one_.ipk one_1_.ipk 'o ne_1.ipk'; do
        refuses 1 'is not named NAME_VERSION.ipk' package "$name" tree
    done
    refuses 1 'ends neither in .ipk' package one_1.0.tar tree
    refuses 1 'no folder missing' package one_2.ipk missing
    expect 'nothing is left' [ "$(echo one_2* one.* _1*)" = 'one_2* one.* _1*' ]
}

test_patch() {
    mkdir patch && echo deb >patch/b_1.deb && echo smu >patch/smu_a && echo both >patch/smu.deb
    echo note >patch/readme && mkdir patch/smu_folder && echo new >smu_new
    "$maker" patch patch keys/vendor.pem smu_new
    expect 'the list' is_text patch/patch-sm3.hash "$(for name in b_1.deb smu.deb smu_a smu_new; do
        printf '%s  %s\n' "$(sm3 "patch/$name")" "$name"
    done)"$'\n'
    expect 'its signature' is_signed keys/vendor.pem.pub patch/patch-sm3.hash patch/patch-sm2.sign
    expect 'the file was copied' cmp smu_new patch/smu_new

    cp -r patch before-patch
    touch 'patch/smu b'
    refuses 1 "names with blanks: 'smu b'" patch patch keys/vendor.pem
    rm 'patch/smu b'
    touch $'smu\tb'
    refuses 1 'names with blanks' patch patch keys/vendor.pem $'smu\tb'
    refuses 1 'readme is no file whose name' patch patch keys/vendor.pem patch/readme
    refuses 1 'smu_missing is no file whose name' patch patch keys/vendor.pem smu_missing
    refuses 1 'cannot sign' patch patch p256.pem
    expect 'a refusal changes nothing' diff -r patch before-patch
    mkdir empty
    refuses 1 'no file in empty begins with smu' patch empty keys/vendor.pem
    refuses 1 'no folder missing' patch missing keys/vendor.pem
}

test_global() {
    local verify=device/var/safe-verify
    ln -s /etc/passwd tree/etc/rc.d/S20out
    ln -s nowhere tree/etc/rc.d/S30dangling
    make_tree second && echo two >second/usr/bin/two
    "$maker" global --white /usr/bin/a --white '/opt/a b' device/ keys/vendor.pem tree second 2>err
    expect 'the public key' cmp keys/vendor.pem.pub $verify/key/korvel_sm2_public.pem
    expect 'the list' is_text $verify/sm3/global-sm3.hash \
        "$(for name in etc/init.d/net etc/rc.d/S10net usr/bin/one usr/bin/two; do
            printf '%s  /%s\n' "$(sm3 "second/$name")" "$name"
        done)"$'\n'
    expect 'its signature' is_signed keys/vendor.pem.pub $verify/sm3/global-sm3.hash \
        $verify/signature/global-sm2.sign
    expect 'the whitelist' is_text $verify/sm3/global-white-sm3.hash $'/usr/bin/a\n/opt/a b\n'
    expect 'its signature' is_signed keys/vendor.pem.pub $verify/sm3/global-white-sm3.hash \
        $verify/signature/global-white-sm2.sign
    expect 'links that are not listed are named' grep -q '/etc/rc.d/S20out leads out of tree' err
    expect 'all of them' [ "$(wc -l <err)" = 2 ]

    cp -r device before-device
    mkdir -p blanks/opt && touch 'blanks/opt/a b'
    refuses 1 "names with blanks: '/opt/a b'" global device keys/vendor.pem blanks
    echo other >second/usr/bin/one
    refuses 1 '/usr/bin/one is another file in second' global device keys/vendor.pem tree second
    refuses 1 "cannot hold 'usr/bin/a'" --white usr/bin/a global device keys/vendor.pem tree
    refuses 1 'no files in empty' global device keys/vendor.pem empty
    refuses 1 'no folder missing' global device keys/vendor.pem missing
    refuses 1 'cannot read the private key' global device file tree
    refuses 1 'cannot sign' global device p256.pem tree
    expect 'a refusal changes nothing' diff -r device before-device

    "$maker" global device keys/vendor.pem tree 2>/dev/null
    expect 'no whitelist without paths' \
        [ ! -e $verify/sm3/global-white-sm3.hash -a ! -e $verify/signature/global-white-sm2.sign ]
}

test_long_names() {
    local deep name
    name=$(printf 'n%.0s' {1..189})
    deep=$name/$name/$name/$name/$name # 949
    mkdir -p "long/$deep" && touch "long/$deep/12345"
    "$maker" global device keys/vendor.pem long
    expect 'the longest line' [ "$(wc -c <device/var/safe-verify/sm3/global-sm3.hash)" = 1023 ]
    mv "long/$deep/12345" "long/$deep/123456"
    refuses 1 'cannot hold a name of 957 bytes' global device keys/vendor.pem long
}

test_usage
test_example
test_key
test_sign
test_package
test_patch
test_global
test_long_names
if ((failures > 0)); then
    echo "$failures failed"
    exit 1
fi
