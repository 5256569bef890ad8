// Adding single patches to the upgrade list, those of an SMU once.
#include "common/log.hh"
#include "list/single_patch.hh"
#include "list/upgrade_list.hh"

// A patch without an SMU is told and taken for new: nothing says whether another is the same.
static bool cmpnt_is_exist_by_smu_id(const cmpnt_upgrade_value &record, const NameIndex *index) {
    if (record.card_id <= 0) {
        CMPNT_LOG(log_error, "param is null\n");
        return false;
    }
    return find_node(&cmpnt_upgrade_list, index, NameKey::smu_id_and_patch, record) != nullptr;
}

int32_t cmpnt_add_to_list_by_single(const cmpnt_upgrade_value &record, NameIndex *index) {
    if (cmpnt_is_exist_by_smu_id(record, index) || !is_single_patch(record)) {
        return 0;
    }
    return append_record(record, CMPNT_UPGRADE_LIST, index, __func__);
}

int32_t cmpnt_add_to_list_by_single(const cmpnt_upgrade_value *record) {
    if (record == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return -1;
    }
    return cmpnt_add_to_list_by_single(*record, nullptr);
}
