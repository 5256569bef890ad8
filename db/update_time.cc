// Stamping a patch with the time at which it took effect.
#include "common/log.hh"
#include "db/copy_text.hh"
#include "db/write.hh"

int32_t cmpnt_update_time_by_patch(const char *patch_name, const char *time) {
    if (patch_name == nullptr) {
        CMPNT_LOG(log_error, "param is null.\n");
        return -1;
    }
    cmpnt_db_request request =
        request_for_patch(CMPNT_PKG_UPGRADE_TABLE, write_effective_time, CMPNT_DB_MAIN, patch_name);
    cmpnt_single_patch_value value = {};
    copy_text(value.effective_time, time);
    set_single_patch_db_value(&request.record, &value);
    if (cmpnt_operate_pkg_database(&request, write_effective_time) != 0) {
        CMPNT_LOG(log_error, "operate pkg database fail, cmd(%d).\n", write_effective_time);
        return -1;
    }
    CMPNT_LOG(log_trace, "cmpnt_update_time_by_patch ok\n");
    return 0;
}
