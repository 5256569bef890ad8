// Step 7: after a patch was installed, the verification service is told which trusted files it
// changed.
#include <stdio.h>

#include <fstream>

#include "platform/reference/reference_platform.h"
#include "tools/demo/demo.hh"

namespace demo {
namespace {

constexpr char patch_package[] = "field-diag";
constexpr char former_files[] = "/var/lib/opkg_bak/info/field-diag.list";
constexpr char current_files[] = "/var/lib/opkg/info/field-diag.list";
constexpr char saved_patches[] = "/var/cache/opkg/cmpnt_safe_verify/.safe_verify_patch";
constexpr char dynamic_whitelist[] = "/var/safe-verify/sm3/global-d-white-sm3.hash";

using Lines = std::vector<std::string>;

Lines lines_of(const char *path) {
    Lines lines;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        lines.push_back(line);
    }
    return lines;
}

// As the package manager leaves its lists when it has replaced a package by another of its name.
bool write_file_lists() {
    for (const char *path : {"/usr/bin/field-diag", "/usr/bin/field-probe", "/opt/diag/README"}) {
        if (cmpnt_write_to_file(path, former_files) != 0) {
            return false;
        }
    }
    return cmpnt_write_to_file("/usr/bin/field-diag", current_files) == 0 &&
           cmpnt_write_to_file("/usr/bin/field-trace", current_files) == 0;
}

// What an earlier patch and another client of the service have left on the list.
bool write_whitelist() {
    return safe_verify_whitelist_update("/usr/bin/field-trace", "cmpnt_upgrade_c",
                                        REFERENCE_PLATFORM_WHITELIST_ADD) == 0 &&
           safe_verify_whitelist_update("/usr/lib/libprobe.so", "diag_server",
                                        REFERENCE_PLATFORM_WHITELIST_ADD) == 0;
}

bool whitelist_is(const char *when, const Lines &expected) {
    const Lines lines = lines_of(dynamic_whitelist);
    printf("the dynamic whitelist %s:\n", when);
    for (const std::string &line : lines) {
        printf("  %s\n", line.c_str());
    }
    return lines == expected;
}

// Through the data store, in which the service listens; any handle will do for the reference platform.
bool send_changes() {
    constexpr uintptr_t store = 1;
    constexpr uintptr_t data_store_channel = 0;
    return cmpnt_save_safe_verify_patch(patch_package, 0, 0, 0) == 0 &&
           lines_of(saved_patches) == Lines{patch_package} &&
           cmpnt_write_trusted_start_whitelist(store, data_store_channel, 0, 0) == 0 &&
           file_is_exist(saved_patches) == 0;
}

}  // namespace

bool try_whitelist() {
    if (!write_file_lists() || !write_whitelist() ||
        !whitelist_is("before", {"/usr/bin/field-trace,cmpnt_upgrade_c",
                                 "/usr/lib/libprobe.so,diag_server"})) {
        return fail("preparing the whitelist");
    }
    if (!send_changes()) {
        return fail("telling the service of an installed patch");
    }
    printf("%s was replaced: field-probe is gone, field-trace is new\n", patch_package);
    return whitelist_is("after", {"/usr/lib/libprobe.so,diag_server",
                                  "/usr/bin/field-probe,cmpnt_upgrade_c"}) ||
           fail("finding the whitelist as expected");
}

}  // namespace demo
