// Is there one, and how many: the upgrade lists by state and by patch.
#include <string.h>

#include "common/log.hh"
#include "list/list.hh"
#include "list/smu_kind.hh"
#include "list/upgrade_list.hh"

namespace {

bool passes(const cmpnt_upgrade_value &value, const char *state, int32_t app_only) {
    return (app_only != 1 || is_smu_kind(value, smu_application)) &&
           (state == nullptr || strcmp(value.state_name, state) == 0);
}

void tell_when_list_is_empty() {
    if (list_is_empty(&cmpnt_upgrade_list)) {
        CMPNT_LOG_AS(log_trace, "cmpnt_is_exist_current_upgrade_list",
                     "the current upgrade list is null.\n");
    }
}

}  // namespace

// The answer is cleared after the search, so that the state may lie in it.
int32_t cmpnt_look_target_state_form_list(cmpnt_upgrade_value *out, const char *state,
                                          int32_t app_only) {
    if (out == nullptr || state == nullptr) {
        CMPNT_LOG(log_error, "param is null.\n");
        return 0;
    }
    if (list_is_empty(&cmpnt_upgrade_list)) {
        CMPNT_LOG(log_trace, "cmpnt_look_target_state_form_list list: is null\n");
    }
    for (const cmpnt_upgrade_value &value : UpgradeRecords(&cmpnt_upgrade_list)) {
        if (passes(value, state, app_only) &&
            cmpnt_name_is_null(value.pkg_name, sizeof(value.pkg_name)) == 0) {
            *out = value;
            CMPNT_LOG(log_trace, "look found: smu(%s), pkg(%s), cur_ver(%s), state(%s), flag(%d)\n",
                      value.patch_name, value.pkg_name, value.cur_version, value.state_name,
                      value.cur_flag);
            return 1;
        }
    }
    memset(out, 0, sizeof(*out));
    return 0;
}

int32_t cmpnt_is_exist_current_upgrade_list(const char *patch_name) {
    if (patch_name == nullptr) {
        CMPNT_LOG(log_error, "param is null.\n");
        return 0;
    }
    tell_when_list_is_empty();
    for (const cmpnt_upgrade_value &value : UpgradeRecords(&cmpnt_upgrade_list)) {
        if (strcmp(value.patch_name, patch_name) == 0) {
            return 1;
        }
    }
    return 0;
}

int32_t cmpnt_is_exist_current_upgrade_list(const cmpnt_upgrade_value &record,
                                            const NameIndex *patch) {
    tell_when_list_is_empty();
    return find_node(&cmpnt_upgrade_list, patch, NameKey::patch, record) != nullptr ? 1 : 0;
}

int32_t cmpnt_get_upgrade_list_count(const char *state, int32_t app_only, int32_t list) {
    const cmpnt_list_head *head = selected_list(list);
    if (head == nullptr) {
        CMPNT_LOG(log_error, "list is null.\n");
        return 0;
    }
    int32_t count = 0;
    for (const cmpnt_upgrade_value &value : UpgradeRecords(head)) {
        count += passes(value, state, app_only) ? 1 : 0;
    }
    CMPNT_LOG(log_trace, "get cmpnt upgrade list, state(%s), count(%d)\n",
              state == nullptr ? "(null)" : state, count);
    return count;
}
