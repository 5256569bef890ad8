// Traversals: a whole table of a database file, when there is such a file.
#include "common/log.hh"
#include "db/connection.hh"

int32_t traverse_pkg_info_table(int32_t table, int32_t mode, uint32_t arg, int32_t db_type) {
    char buffer[CMPNT_PATH_SIZE];
    const char *path = database_path(db_type, buffer);
    if (path == nullptr) {
        CMPNT_LOG(log_error, "cmpnt_strcat_tmp_and_name fail\n");
        return -1;
    }
    // Opening would create the file; a device that has none yet has nothing to load.
    if (file_is_exist(path) == 0) {
        CMPNT_LOG(log_trace, "sqlite database is not exist, delay traversal.\n");
        return 0;
    }
    DatabaseExchange exchange;
    if (exchange.begin(db_type, __func__) != 0) {
        return -1;
    }
    int32_t result = select_pkg_info_table(exchange.db(), table, mode, arg);
    if (result != 0) {
        CMPNT_LOG(log_error, "select pkg info table fail.\n");
    }
    const int closed = exchange.close();
    if (closed != SQLITE_OK) {
        CMPNT_LOG(log_error, "sqlite close fail ret(%d).\n", closed);
        result = -1;
    }
    return result;
}

int32_t cmpnt_get_database_hp_list(void) {
    if (traverse_pkg_info_table(CMPNT_PKG_UPGRADE_TABLE, CMPNT_ROWS_TO_HP_LIST, 0, CMPNT_DB_MAIN) !=
        0) {
        CMPNT_LOG(log_error, "traverse_pkg_info_table fail.\n");
        return -1;
    }
    return 0;
}
