// The guard of files that a hot patch has changed: nothing else may touch them.
#include <string.h>

#include "common/log.hh"
#include "common/split_text.hh"
#include "list/list.hh"
#include "list/smu_kind.hh"

namespace {

constexpr char guard[] = "cmpnt_traverse_list_and_check_hotpatch_target";
constexpr char separator[] = ";";
constexpr int32_t max_targets = 32;  // one more than a record may have

int32_t check_targets(const char *text, const char *file_name) {
    const SplitText<max_targets> targets(text, separator);
    if (!targets.is_whole()) {
        CMPNT_LOG_AS(log_client_error, guard, "cmpnt_detach_install_queue fail.\n");
        return -1;
    }
    for (const char *target : targets) {
        if (strcmp(target, file_name) == 0) {
            CMPNT_LOG_AS(log_client_error, guard, "(%s) is hotpatch upgrade in device\n", target);
            return -1;
        }
    }
    return 0;
}

int32_t check_hot_patches(const char *file_name) {
    for (const cmpnt_upgrade_value &value : UpgradeRecords(&cmpnt_hp_list)) {
        if (is_smu_kind(value, smu_hot_patch) &&
            check_targets(value.hotpatch_target, file_name) != 0) {
            return -1;
        }
    }
    return 0;
}

}  // namespace

// The list is used up: an answer from an old one must not let a file be touched.
int32_t cmpnt_traverse_list_and_check_hotpatch_target(const char *file_name) {
    if (file_name == nullptr) {
        CMPNT_LOG(log_client_error, "param is null.\n");
        return -1;
    }
    const int32_t result = check_hot_patches(file_name);
    cmpnt_recycle_upgrade_list(CMPNT_HP_LIST);
    return result;
}
