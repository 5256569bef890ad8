// Deleting rows.
#include <stdio.h>

#include "db/write.hh"

namespace {

void format_delete(char (&sql)[statement_size], const cmpnt_db_request &request,
                   const Field &name) {
    snprintf(sql, sizeof(sql), "delete from %s where %s = '%s'", table_name(request.table),
             name.column, name.text(request));
}

void format_delete_by_path(char (&sql)[statement_size], const cmpnt_pkg_record &record) {
    snprintf(sql, sizeof(sql), "delete from %s where %s = '%s' and %s = '%s'",
             table_name(CMPNT_PKG_UPGRADE_TABLE), column::patch_name, record.patch_name,
             column::cur_pkg_path, record.cur_pkg_path);
}

void format_delete_sync(char (&sql)[statement_size], int32_t sync_id) {
    snprintf(sql, sizeof(sql), "delete from %s where %s = %d", table_name(CMPNT_SERVER_TABLE),
             column::sync_id, sync_id);
}

}  // namespace

int32_t del_pkg_info_table(sqlite3 *db, const cmpnt_db_request *request) {
    char sql[statement_size] = {};
    if (request->table == CMPNT_PACKAGE_INFO_TABLE) {
        format_delete(sql, *request, field::package_name);
    } else if (request->table == CMPNT_PKG_UPGRADE_TABLE) {
        format_delete(sql, *request, field::patch_name);
    }
    return run_statement(db, sql, __func__);
}

int32_t delete_table_record_from_db(sqlite3 *db, const cmpnt_db_request *request, DeleteForm form) {
    char sql[statement_size] = {};
    const int32_t table = request->table;
    if (form == DeleteForm::name && table == CMPNT_PACKAGE_INFO_TABLE) {
        format_delete(sql, *request, field::package_name);
    } else if (form == DeleteForm::name &&
               (table == CMPNT_PKG_UPGRADE_TABLE || table == CMPNT_AUTO_SYNC_TABLE)) {
        format_delete(sql, *request, field::patch_name);
    } else if (form == DeleteForm::patch_and_path && table == CMPNT_PKG_UPGRADE_TABLE) {
        format_delete_by_path(sql, request->record);
    } else if (form == DeleteForm::sync_id && table == CMPNT_SERVER_TABLE) {
        format_delete_sync(sql, request->sync_id);
    }
    return run_statement(db, sql, __func__);
}
