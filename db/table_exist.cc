// Whether tables are there: whether a select on them succeeds.
#include "common/log.hh"

int32_t cmpnt_table_is_exist(int32_t table, int32_t db_type) {
    cmpnt_db_request request = {};
    request.table = table;
    request.db_type = db_type;
    if (cmpnt_get_pkg_info_database(&request) == -1) {
        CMPNT_LOG(log_error, "the sqlite db table maybe not exist, table(%d).\n", table);
        return 0;
    }
    return 1;
}

int32_t cmpnt_db_tabel_is_exist(void) {
    return cmpnt_table_is_exist(CMPNT_PACKAGE_INFO_TABLE, CMPNT_DB_MAIN) == 1 &&
                   cmpnt_table_is_exist(CMPNT_PKG_UPGRADE_TABLE, CMPNT_DB_MAIN) == 1
               ? 1
               : 0;
}
