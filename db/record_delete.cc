// Deletes the records of a patch.
#include "common/log.hh"
#include "db/write.hh"

namespace {

int32_t delete_records(const char *patch_name, int32_t db_type, int32_t table) {
    cmpnt_db_request request = request_for_patch(table, write_delete_record, db_type, patch_name);
    return cmpnt_operate_pkg_database(&request, write_delete_record);
}

}  // namespace

int32_t cmpnt_delete_record_from_db(const char *patch_name, int32_t db_type) {
    if (patch_name == nullptr) {
        CMPNT_LOG(log_error, "param is null.\n");
        return -1;
    }
    if (delete_records(patch_name, db_type, CMPNT_PKG_UPGRADE_TABLE) != 0) {
        CMPNT_LOG(log_error, "operate pkg database fail, cmd(%d).\n", write_delete_record);
        return -1;
    }
    CMPNT_LOG(log_major, "cmpnt_delete_record_from_db ok.\n");
    return 0;
}

int32_t cmpnt_delete_db_record_by_patch(const char *patch_name, int32_t db_type, int32_t table) {
    if (patch_name == nullptr) {
        CMPNT_LOG(log_error, "param is null.\n");
        return -1;
    }
    if (delete_records(patch_name, db_type, table) != 0) {
        CMPNT_LOG(log_error, "cmpnt_operate_pkg_database fail, cmd(%d).\n", write_delete_record);
        return -1;
    }
    return 0;
}
