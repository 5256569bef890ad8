// Reads the record of a patch.
#include <stdio.h>
#include <string.h>

#include "common/log.hh"
#include "db/query.hh"

int32_t cmpnt_get_db_by_patch(cmpnt_db_request *req, const char *patch_name) {
    if (req == nullptr || patch_name == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return -1;
    }
    // The name may lie in the request, which is cleared.
    char name[CMPNT_PATCH_NAME_SIZE];
    snprintf(name, sizeof(name), "%s", patch_name);
    memset(req, 0, sizeof(*req));
    req->table = CMPNT_PKG_UPGRADE_TABLE;
    req->cmd = query_patch;
    req->db_type = CMPNT_DB_MAIN;
    set_upgrade_db_value(&req->record, name, nullptr, nullptr, nullptr, nullptr, 0, 0, 0, 0,
                         nullptr);
    if (cmpnt_get_pkg_info_database(req) != 0) {
        CMPNT_LOG(log_error, "cmpnt_get_pkg_info_database fail.\n");
        return -1;
    }
    return 0;
}
