// Stamps when a patch took effect.
#include "common/log.hh"

int32_t cmpnt_update_active_time(const char *patch_name) {
    constexpr int32_t date_and_time = 0;
    if (patch_name == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return -1;
    }
    char now[32] = {};
    cmppnt_get_time(now, sizeof(now), date_and_time);
    return cmpnt_update_time_by_patch(patch_name, now);
}

int32_t cmpnt_update_deactive_time(const char *patch_name) {
    if (patch_name == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return -1;
    }
    return cmpnt_update_time_by_patch(patch_name, nullptr);
}
