// Adding SMUs to the upgrade list, each once.
#include "common/log.hh"
#include "list/upgrade_list.hh"

int32_t cmpnt_add_to_list_by_smu(const cmpnt_upgrade_value &record, NameIndex *index) {
    if (cmpnt_is_exist_current_upgrade_list(record, index) == 1) {
        return 0;
    }
    return append_record(record, CMPNT_UPGRADE_LIST, index, __func__);
}

int32_t cmpnt_add_to_list_by_smu(const cmpnt_upgrade_value *record) {
    if (record == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return -1;
    }
    return cmpnt_add_to_list_by_smu(*record, nullptr);
}
