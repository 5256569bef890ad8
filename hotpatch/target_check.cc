// Whether the file that a hot patch targets is the one that it was built against.
#include <stdio.h>
#include <string.h>

#include "common/log.hh"
#include "hotpatch/record_load.hh"

namespace {

const cmpnt_upgrade_value *find_package(const UpgradeRecords &records, const char *pkg_path) {
    for (const cmpnt_upgrade_value &record : records) {
        if (strcmp(record.cur_pkg_path, pkg_path) == 0) {
            return &record;
        }
    }
    return nullptr;
}

}  // namespace

// A package that no record tells of passes: there is nothing it could be checked against.
int32_t libcmpnt_db_check_hp_tgt_md5(const char *pkg_path) {
    if (pkg_path == nullptr) {
        CMPNT_LOG(log_error, "param is null.\n");
        return -1;
    }
    // The path may be a text of the list, which the load frees. A longer one than records hold stays
    // longer.
    char wanted[CMPNT_PATH_SIZE + 1];
    snprintf(wanted, sizeof(wanted), "%s", pkg_path);
    LoadedHotpatchRecords loaded;
    if (!loaded.load(__func__)) {
        return hotpatch_records_not_loaded;
    }
    const cmpnt_upgrade_value *record = find_package(loaded.records(), wanted);
    if (record == nullptr) {
        return 0;
    }
    const char *target = record->hotpatch_target_path;
    if (file_md5_check(record->hotpatch_target_md5, target) == 0) {
        return 0;
    }
    CMPNT_LOG(log_client_trace, "try to check md5 as striped version\n");
    const int32_t result = file_md5_check(record->hotpatch_target_strip_md5, target);
    if (result != 0) {
        CMPNT_LOG(log_error, "file_md5_check fail(%s).\n", target);
    }
    return result;
}
