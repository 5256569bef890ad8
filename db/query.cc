// A query: one select whose rows are matched against a request.
#include "db/query.hh"

#include <sqlite3.h>

#include "common/log.hh"
#include "db/connection.hh"
#include "db/select.hh"
#include "db/statement.hh"

int32_t read_pkg_info_table(sqlite3 *db, cmpnt_db_request *req) {
    if (db == nullptr || req == nullptr) {
        return -1;
    }
    char sql[select_size] = "";
    if (req->table != CMPNT_AUTO_SYNC_TABLE) {  // its rows are only ever loaded into lists
        format_select(sql, req->table);
    }
    Query query(req);
    SqliteError error;
    if (execute(db, sql, error, read_pkg_info_table_callback, &query) != SQLITE_OK) {
        CMPNT_LOG(log_error, "sqlite exec error: %s, sql_cmd(%s)\n", error.text(), sql);
        return -1;
    }
    return 0;
}

int32_t cmpnt_get_pkg_info_database(cmpnt_db_request *req) {
    if (req == nullptr) {
        CMPNT_LOG(log_error, "input param is null.\n");
        return -1;
    }
    DatabaseExchange exchange;
    if (exchange.begin(req->db_type, __func__) != 0) {
        return -1;
    }
    int32_t result = read_pkg_info_table(exchange.db(), req);
    if (result != 0) {
        CMPNT_LOG(log_trace, "read pkg info table fail\n");
    }
    const int closed = exchange.close();
    if (closed != SQLITE_OK) {
        CMPNT_LOG(log_error, "sqlite close fail ret (%d).\n", closed);
        result = -1;
    }
    return result;
}
