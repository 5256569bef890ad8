// The existence test of a write: which fields name the row depends on the table and the code.
#include <stdio.h>

#include "db/write.hh"

namespace {

struct RowKey {
    Field first;
    Field second;
};

RowKey upgrade_key(int32_t code) {
    switch (code) {
        case write_cur_flag_of_package:
        case write_test_pkg_name:
            return {field::pkg_name, field::none};
        case write_cur_flag_of_version:
            return {field::pkg_name, field::cur_version};
        case write_row_by_path:
        case write_delete_record_by_path:
            return {field::patch_name, field::cur_pkg_path};
        case write_row:
        case write_last_version:
        case write_cur_flag_of_package_in_patch:
        case write_path:
        case write_target_pkg_path:
            return {field::patch_name, field::pkg_name};
        default:
            return {field::patch_name, field::none};
    }
}

RowKey row_key(const cmpnt_db_request &request) {
    switch (request.table) {
        case CMPNT_PACKAGE_INFO_TABLE:
            return {field::package_name,
                    request.cmd == write_test_package_name ? field::none : field::base_version};
        case CMPNT_PKG_UPGRADE_TABLE:
            return upgrade_key(request.cmd);
        case CMPNT_SERVER_TABLE:
            if (request.cmd == write_sync_flag || request.cmd == write_delete_sync) {
                return {field::sync_id, field::none};
            }
            return {field::none, field::none};  // no row ever counts as present
        case CMPNT_AUTO_SYNC_TABLE:
            return {field::patch_name, field::none};
        default:
            return {field::none, field::none};
    }
}

void format_row_test(char (&sql)[statement_size], const cmpnt_db_request &request) {
    const RowKey key = row_key(request);
    const char *table = table_name(request.table);
    if (key.first.column == nullptr) {
        return;
    }
    if (request.table == CMPNT_SERVER_TABLE) {
        snprintf(sql, sizeof(sql), "select *from %s where %s = '%d'", table, key.first.column,
                 key.first.number(request));
    } else if (key.second.column == nullptr) {
        snprintf(sql, sizeof(sql), "select *from %s where %s = '%s'", table, key.first.column,
                 key.first.text(request));
    } else {
        snprintf(sql, sizeof(sql), "select *from %s where %s = '%s' and %s = '%s'", table,
                 key.first.column, key.first.text(request), key.second.column,
                 key.second.text(request));
    }
}

int note_row(void *exists, int, char **, char **) {
    *static_cast<int32_t *>(exists) = 1;
    return 0;
}

}  // namespace

int32_t pkg_name_is_exist_in_db(sqlite3 *db, const cmpnt_db_request *request, int32_t *exists) {
    *exists = 0;
    char sql[statement_size] = {};
    format_row_test(sql, *request);
    return run_statement(db, sql, __func__, note_row, exists);
}
