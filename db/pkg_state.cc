// A query from scratch: the request is made here, the caller names table and code alone.
#include <string.h>

#include "common/log.hh"

int32_t cmpnt_get_pkg_state(cmpnt_db_request *req, int32_t table, int32_t cmd) {
    if (req == nullptr) {
        CMPNT_LOG(log_error, "param is null.\n");
        return -1;
    }
    memset(req, 0, sizeof(*req));  // no name to look for, the main file, nothing found yet
    req->table = table;
    req->cmd = cmd;
    if (cmpnt_get_pkg_info_database(req) != 0) {
        CMPNT_LOG(log_error, "cmpnt_get_pkg_info_database fail.\n");
        return -1;
    }
    CMPNT_LOG(log_trace, "cmpnt_get_pkg_state ok!\n");
    return 0;
}
