// Reads the record of a patch.
#include "common/log.hh"
#include "db/query.hh"
#include "db/write.hh"

int32_t cmpnt_get_db_by_patch(cmpnt_db_request *req, const char *patch_name) {
    if (req == nullptr || patch_name == nullptr) {
        CMPNT_LOG(log_error, "param is null.\n");
        return -1;
    }
    // Made aside: the name may lie in the request, which is cleared.
    *req = request_for_patch(CMPNT_PKG_UPGRADE_TABLE, query_patch, CMPNT_DB_MAIN, patch_name);
    if (cmpnt_get_pkg_info_database(req) != 0) {
        CMPNT_LOG(log_error, "cmpnt_get_pkg_info_database fail.\n");
        return -1;
    }
    return 0;
}
