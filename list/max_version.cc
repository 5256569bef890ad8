// The newest record in a state, over all packages of the upgrade list.
#include <string.h>

#include "common/log.hh"
#include "list/list.hh"
#include "list/newest_version.hh"

int32_t cmpnt_get_max_version_by_state(cmpnt_upgrade_value *out, const char *state,
                                       int32_t *found) {
    if (out == nullptr || state == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return -1;
    }
    NewestVersion newest;
    for (const cmpnt_upgrade_value &value : UpgradeRecords(&cmpnt_upgrade_list)) {
        if (strcmp(value.state_name, state) == 0 && newest.raise_to(value.cur_version)) {
            CMPNT_LOG(log_trace, "find max version, smu(%s) pkg(%s), version(%s), state(%s)\n",
                      value.patch_name, value.pkg_name, value.cur_version, value.state_name);
        }
    }
    for (const cmpnt_upgrade_value &value : UpgradeRecords(&cmpnt_upgrade_list)) {
        if (strcmp(value.state_name, state) == 0 && strcmp(value.cur_version, newest.text) == 0) {
            *out = value;
            CMPNT_LOG(log_trace, "find max version, smu(%s), pkg_name(%s), version(%s), path(%s)\n",
                      value.patch_name, value.pkg_name, value.cur_version, value.cur_pkg_path);
            if (found != nullptr) {
                *found = 1;
            }
            return 0;
        }
    }
    return 0;
}
