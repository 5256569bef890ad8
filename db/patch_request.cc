// Requests that name a patch.
#include "db/write.hh"

cmpnt_db_request request_for_patch(int32_t table, int32_t cmd, int32_t db_type,
                                   const char *patch_name) {
    cmpnt_db_request request = {};
    request.table = table;
    request.cmd = cmd;
    request.db_type = db_type;
    set_upgrade_db_value(&request.record, patch_name, nullptr, nullptr, nullptr, nullptr, 0, 0, 0,
                         0, nullptr);
    return request;
}
