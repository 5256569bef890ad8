#!/bin/bash
# The binary interface is the one that is kept in abi/, or its changes are announced; and changes are
# seen: of a function's name, and of a record's size.
#
# usage: abi_test.sh BUILD_FOLDER SOURCE_FOLDER ARCHITECTURE
set -euo pipefail

build=$1 source=$2 architecture=$3
kept=$source/abi/libcmpnt_db-$architecture.abi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$source/scripts/abi" check "$build" "$architecture"

expect() {
    local status=0
    "$source/scripts/abi" check "$build" "$architecture" "$2" "$3" >"$work/log" || status=$?
    if ((status != $1)); then
        cat "$work/log"
        echo "the check of ${2##*/} with ${3##*/} ended with $status, expected: $1"
        exit 1
    fi
}

printf '%s\n' '## Unreleased' '- ABI: a test' '## 1.0.0' '- Added' >"$work/announced"
printf '%s\n' '## Unreleased' '- Added the ABI: a test' '## 1.0.0' '- ABI: an old one' \
    >"$work/not_announced"
sed "s/cmpnt_db_version/cmpnt_db_former/g" "$kept" >"$work/other_function"
sed "s/\(class-decl name='cmpnt_db_request'.* size-in-bits='\)/\11/" "$kept" >"$work/other_record"
for dump in other_function other_record; do
    ! cmp -s "$kept" "$work/$dump" || { echo "$dump is no other: this test is out of date" && exit 1; }
    expect 1 "$work/$dump" "$work/not_announced"
    expect 0 "$work/$dump" "$work/announced"
done
expect 0 "$kept" "$work/not_announced"
