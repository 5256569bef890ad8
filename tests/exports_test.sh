#!/bin/bash
# The header, the version script and the shared library name the same functions and variables.
#
# usage: exports_test.sh LIBRARY HEADER VERSION_SCRIPT COMPILER NM
set -euo pipefail

library=$1 header=$2 version_script=$3 compiler=$4 nm=$5
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Declarations that carry the visibility attribute: the name stands before the "(" or the ";".
"$compiler" -E -P -x c "$header" | tr '\n' ' ' | sed 's/;/;\n/g' |
    sed -nE 's/^.*__attribute__\(\(visibility\("default"\)\)\)(.*)$/\1/p' |
    sed -E 's/__attribute__.*$//; s/^([^(]*[ *])([A-Za-z_0-9]+) *\(.*$/\2/; s/^.*[ *]([A-Za-z_0-9]+) *;.*$/\1/' |
    sort -u > "$work/header"
sed -nE '/global:/,/local:/ s/^ +([A-Za-z_0-9]+);.*$/\1/p' "$version_script" | sort > "$work/script"
"$nm" -D --defined-only "$library" | awk '$2 != "A" { sub(/@.*/, "", $3); print $3 }' |
    sort > "$work/binary"

count=$(wc -l < "$work/header")
if ((count < 100)); then
    echo "only $count names found in the header: this test no longer reads it"
    exit 1
fi
diff -u --label header "$work/header" --label 'version script' "$work/script"
diff -u --label header "$work/header" --label library "$work/binary"
echo "$count names, the same in all three"
