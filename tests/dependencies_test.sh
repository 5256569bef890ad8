#!/bin/bash
# The shared library needs the C library, SQLite and protobuf-c, and imports beyond them exactly the
# platform's functions. No C++ runtime, no static initialisers.
#
# usage: dependencies_test.sh LIBRARY PLATFORM_HEADER COMPILER NM READELF
set -euo pipefail

library=$1 platform_header=$2 compiler=$3 nm=$4 readelf=$5

needed=$("$readelf" -d "$library" | sed -nE 's/.*\(NEEDED\).*\[(.*)\]/\1/p' | sort | tr '\n' ' ')
expected='libc.so.6 libprotobuf-c.so.1 libsqlite3.so.0 '
if [[ $needed != "$expected" ]]; then
    echo "needs: $needed, expected: $expected"
    exit 1
fi

soname=$("$readelf" -d "$library" | sed -nE 's/.*\(SONAME\).*\[(.*)\]/\1/p')
if [[ $soname != libcmpnt_db.so.1 ]]; then
    echo "soname: $soname"
    exit 1
fi

# What the platform's contract declares, by name.
platform=$(sed '/^#include/d' "$platform_header" | "$compiler" -E -P -x c - | tr '\n' ' ' | sed 's/;/;\n/g' |
    grep -oE '\b(vx_[a-z_]+|printk_syslog_(lc|ext)|cli_printf|safe_verify_[a-z_]+|do_verify_signature) *\(' |
    tr -d ' (' | sort -u)
if (($(wc -l <<< "$platform") != 12)); then
    echo "the platform's contract no longer has its twelve functions:" "$platform"
    exit 1
fi

# Symbols of the libraries carry a version, but for SQLite's; weak ones are the toolchain's own.
foreign=$("$nm" -D --undefined-only "$library" | awk '$1 == "U" { print $2 }' |
    grep -vE '@|^sqlite3_' | sort -u || true)
unknown=$(comm -23 <(printf '%s\n' "$foreign") <(printf '%s\n' "$platform"))
if [[ -n $unknown ]]; then
    echo "imports that are no platform function:" "$unknown"
    exit 1
fi
for name in printk_syslog_lc printk_syslog_ext vx_time_get cli_printf; do
    if ! grep -qx "$name" <<< "$foreign"; then
        echo "$name is not imported: this test no longer reads the library"
        exit 1
    fi
done

# One entry is the toolchain's own.
entries=$("$readelf" -SW "$library" |
    sed -nE 's/.* \.init_array +[A-Z_]+ +[0-9a-f]+ [0-9a-f]+ ([0-9a-f]+) .*/\1/p')
if ((16#${entries:-0} > 8)); then
    echo "static initialisers: .init_array has 0x$entries bytes"
    exit 1
fi
echo "needs $needed; imports ${foreign//$'\n'/ }"
