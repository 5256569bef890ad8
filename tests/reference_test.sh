#!/bin/bash
# Every exported name is in the reference of the functions, and described there.
#
# usage: reference_test.sh SOURCE_FOLDER VERSION_SCRIPT
set -euo pipefail

cd "$1"
version_script=$2
type -P doxygen awk >/dev/null || exit 77
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# reference SETTING...: doxygen's complaints go to $work/complaints.
reference() {
    {
        cat docs/Doxyfile
        printf '%s\n' "OUTPUT_DIRECTORY=$work" GENERATE_HTML=NO GENERATE_XML=YES "$@"
    } | doxygen - >"$work/complaints" 2>&1
}

if ! reference "GENERATE_TAGFILE=$work/tags"; then
    cat "$work/complaints"
    exit 1
fi
sed -nE '/global:/,/local:/ s/^ +([A-Za-z_0-9]+);.*$/\1/p' "$version_script" | sort >"$work/exported"
sed -nE 's/^ *<name>([A-Za-z_0-9]+)<\/name>$/\1/p' "$work/tags" | sort -u >"$work/described"
comm -23 "$work/exported" "$work/described" >"$work/missing"
if [[ ! -s $work/exported || -s $work/missing ]]; then
    echo "not in the reference:"
    cat "$work/missing"
    exit 1
fi

# complained_about NAME DECLARATION...: of a header with these lines.
complained_about() {
    printf '%s\n' '/* A header. */' "${@:2}" >"$work/header.h"
    ! reference "INPUT=$work/header.h" && grep -q "$1.* is not documented" "$work/complaints"
}

expect() {
    if ! "$@"; then
        echo "not so: $*"
        cat "$work/complaints"
        exit 1
    fi
}

expect complained_about alone '' 'CMPNT_API int32_t alone(void);'
expect complained_about apart '' '/* Two. */' 'CMPNT_API void one(void);' \
    '' 'CMPNT_API void apart(void);'
expect complained_about record '' 'typedef struct record {' '    int member;' '} record;'
if complained_about together '' '/* Two. */' 'CMPNT_API void one(int a,' '    int b);' \
    'CMPNT_API void together(void);' '' 'CMPNT_API void last(void); /* Own. */'; then
    echo 'a shared or a trailing comment does not count'
    exit 1
fi
[[ ! -s $work/complaints ]] || expect false "no complaint"

echo "$(wc -l <"$work/exported") names, all of them described"
