#!/bin/bash
# What is installed can be built against as its users do, wherever the tree was moved to: the example
# host in C by pkg-config, a host in C++ by find_package, each with the shared library and with the
# archive. They run with what was installed, in the sandbox.
#
# usage: install_test.sh BUILD_FOLDER SOURCE_FOLDER [LAUNCHER...]
set -euo pipefail

build=$1 source=$2
launcher=("${@:3}")
# In the build folder, which can be read inside the sandbox.
work=$build/tests/install_test
tree=$work/moved
export LC_ALL=C

show_failure() {
    sed 's/^/    /' "$work"/*.log
}
trap 'status=$?; ((status == 0)) || show_failure' EXIT

fail() {
    echo "$*"
    exit 1
}

# With folders of names unlike those at hand, to which nothing may have been tied.
install_and_move() {
    local component
    rm -rf "$work"
    mkdir -p "$work"
    for component in library development tools; do
        cmake --install "$build" --prefix "$work/first" --component "$component" >>"$work/install.log"
    done
    mv "$work/first" "$tree"
    pc_file=$(find "$tree" -name libcmpnt_db.pc)
    library_folder=${pc_file%/pkgconfig/*}
    local texts=("$pc_file" "$library_folder"/cmake/cmpnt_db/*.cmake)
    if grep -nF -e "$build" -e "$source" -e "$work/first" "${texts[@]}"; then
        fail 'an installed file names a folder of this build'
    fi
}

tools_are_there() {
    local file
    for file in bin/cmpntctl bin/cmpnt-package share/cmpnt_db/cmpntctl.schema.json \
        share/bash-completion/completions/cmpntctl; do
        [[ -s $tree/$file ]] || fail "$file was not installed"
    done
    "${launcher[@]}" "$tree/bin/cmpntctl" --help >"$work/help.log" || fail 'cmpntctl does not run'
}

# expect_output TEXT PROGRAM: its last line.
expect_output() {
    local output
    output=$("${launcher[@]}" "$2" 2>&1) || fail "$2 failed: $output"
    [[ ${output##*$'\n'} == "$1" ]] || fail "$2 ended with: $output"
}

needs_shared_library() {
    readelf -d "$1" 2>/dev/null | grep -q 'NEEDED.*libcmpnt_db\.so\.1'
}

by_pkg_config() {
    export PKG_CONFIG_PATH=$library_folder/pkgconfig
    cp "$tree"/share/doc/cmpnt_db/examples/host/* "$work"
    make -C "$work" CFLAGS='-std=c99 -pedantic -Wall -Wextra -Werror' \
        LDFLAGS="-Wl,-rpath,$library_folder" >>"$work/make.log" 2>&1
    mv "$work/host" "$work/host_shared"
    make -C "$work" STATIC=1 >>"$work/make.log" 2>&1
    needs_shared_library "$work/host_shared" || fail 'the host has no need of the shared library'
    if needs_shared_library "$work/host"; then
        fail 'the host linked with the archive needs the shared library'
    fi
    expect_output 'rolled back smu_hello' "$work/host_shared"
    expect_output 'rolled back smu_hello' "$work/host"
}

by_find_package() {
    cmake -G Ninja -S "$source/tests/install" -B "$work/consumer" -DCMAKE_PREFIX_PATH="$tree" \
        -DEXAMPLE_FOLDER="$source/examples/host" >>"$work/cmake.log" 2>&1
    cmake --build "$work/consumer" >>"$work/cmake.log" 2>&1
    # The folder above it in which CMake ran is what the sandbox lets a program read.
    mv "$work"/consumer/consumer_* "$work"
    needs_shared_library "$work/consumer_cmpnt_db" || fail 'the consumer has no need of the library'
    if needs_shared_library "$work/consumer_cmpnt_db_static"; then
        fail 'the consumer of the archive needs the shared library'
    fi
    expect_output 'the newest active version is 2.10' "$work/consumer_cmpnt_db"
    expect_output 'the newest active version is 2.10' "$work/consumer_cmpnt_db_static"
}

install_and_move
[[ $(pkg-config --modversion "$pc_file") == "$(sed -nE 's/^#define CMPNT_DB_VERSION "(.*)"$/\1/p' \
    "$tree/include/libcmpnt_db.h")" ]] || fail 'header and pkg-config file are of two versions'
tools_are_there
by_pkg_config
by_find_package
echo 'four hosts were built against the installed tree, and ran'
