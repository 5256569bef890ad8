// Sets the state of a patch's rows, or of a base package.
#include "common/log.hh"
#include "db/write.hh"

int32_t cmpnt_update_state_database(const char *patch_name, const char *name, int32_t state,
                                    int32_t table) {
    if ((table == CMPNT_PACKAGE_INFO_TABLE ? name : patch_name) == nullptr) {
        CMPNT_LOG(log_error, "param is null.\n");
        return -1;
    }
    // The request's own code stays 0, which the existence test reads: a base package is looked for
    // by its name and an empty base version.
    cmpnt_db_request request = {};
    request.table = table;
    request.db_type = CMPNT_DB_MAIN;
    if (table == CMPNT_PKG_UPGRADE_TABLE) {
        set_upgrade_db_value(&request.record, patch_name, name, nullptr, nullptr, nullptr, state, 0,
                             0, 0, nullptr);
    } else if (table == CMPNT_PACKAGE_INFO_TABLE) {
        set_base_db_value(&request.base, name, nullptr, nullptr, state, 0, 0);
    }
    if (cmpnt_operate_pkg_database(&request, write_state) != 0) {
        CMPNT_LOG(log_error, "operate pkg database fail, cmd(%d).\n", write_state);
        return -1;
    }
    return 0;
}
