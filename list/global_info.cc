#include "list/global_info.hh"

#include <string.h>

#include "common/log.hh"

namespace {

constexpr const char *newest_states[] = {"active", "running", "invalid_hp_active",
                                         "invalid_hp_running"};

bool may_be_newest(const char *state) {
    for (const char *name : newest_states) {
        if (strcmp(state, name) == 0) {
            return true;
        }
    }
    return false;
}

}  // namespace

int32_t cmpnt_get_global_info(cmpnt_upgrade_value *out, const cmpnt_upgrade_value *record,
                              int32_t newest_type) {
    if (out == nullptr || record == nullptr) {
        CMPNT_LOG(log_client_error, "param is null.\n");
        return -1;
    }
    switch (newest_type) {
        case newest_in_force:
            if (may_be_newest(record->state_name)) {
                *out = *record;
            }
            return 0;
        case newest_of_all:
        case newest_of_any:
            *out = *record;
            return 0;
        default:
            CMPNT_LOG(log_error, "newest_type(%d) error\n", newest_type);
            return -1;
    }
}
