// Removing the directories of what is not to stay unpacked.
#include <stdio.h>
#include <string.h>

#include "common/log.hh"
#include "list/list.hh"
#include "list/smu_kind.hh"

// Packages in the download area go as well: who asks wants the upgrades of the list off the device.
// But no path, "//x.bin" least of all, may take the root directory.
void cmpnt_delete_not_install_patch(void) {
    for (const cmpnt_upgrade_value &value : UpgradeRecords(&cmpnt_upgrade_list)) {
        if (is_smu_kind(value, smu_application)) {
            continue;
        }
        char directory[CMPNT_PATH_SIZE];
        snprintf(directory, sizeof(directory), "%s", value.cur_pkg_path);
        get_path_exclude_file_name(directory);
        CMPNT_LOG(log_major, "begin start delete dir(%s), path(%s)\n", directory,
                  value.cur_pkg_path);
        const bool is_root_or_empty = directory[strspn(directory, "/")] == '\0';
        if (!is_root_or_empty) {
            cmpnt_remove(directory);
        }
    }
}
