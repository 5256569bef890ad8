// Inserting a row.
#include <stdio.h>

#include "common/log.hh"
#include "db/write.hh"

namespace {

// current_version stays NULL until an update sets it.
void format_base_insert(char (&sql)[statement_size], const cmpnt_base_pkg_record &base) {
    snprintf(sql, sizeof(sql),
             "insert into %s(%s, %s, %s, %s, %s)                 values('%s', '%s', %d, %d, %d)",
             table_name(CMPNT_PACKAGE_INFO_TABLE), column::package_name, column::base_version,
             column::package_state, column::package_is_new, column::upgrade_count,
             base.package_name, base.base_version, base.package_state, base.package_is_new,
             base.upgrade_count);
}

void format_server_insert(char (&sql)[statement_size], const cmpnt_db_request &request) {
    snprintf(sql, sizeof(sql), "insert into %s(%s, %s) values(%d, %d)",
             table_name(CMPNT_SERVER_TABLE), column::sync_id, column::sync_flag, request.sync_id,
             request.sync_flag);
}

}  // namespace

void cmpnt_set_insert_table_value(char (&sql)[statement_size], const char *table,
                                  const cmpnt_pkg_record *record) {
    if (table == nullptr || record == nullptr) {
        CMPNT_LOG(log_error, "param is null.\n");
        return;
    }
    using namespace column;
    const cmpnt_pkg_record &row = *record;
    snprintf(sql, sizeof(sql),
             "insert into %s(%s, %s, %s, %s, %s, %s, %s, %s, %s, %s, %s, %s, %s, %s, %s, %s, %s, "
             "%s, %s, %s, %s, %s, %s)         values('%s', '%s', '%s', '%s', '%s', %d, %d, %d, %d, "
             "'%s', '%s', '%s', '%s', '%s', %d, %d, %d, '%s', '%s', '%s', '%s', '%s', '%s')",
             table, patch_name, pkg_name, cur_pkg_path, cur_version, last_version, pkg_state,
             card_id, cur_flag, op_flag, description, patch_ver, patch_id, effective_time,
             last_patch, patch_size, patch_type, patch_order, hotpatch_file, hotpatch_target,
             hotpatch_target_path, hotpatch_target_pkg_path, hotpatch_target_md5,
             hotpatch_target_strip_md5, row.patch_name, row.pkg_name, row.cur_pkg_path,
             row.cur_version, row.last_version, row.pkg_state, row.card_id, row.cur_flag,
             row.op_flag, row.description, row.patch_ver, row.patch_id, row.effective_time,
             row.last_patch, row.patch_size, row.patch_type, row.patch_order, row.hotpatch_file,
             row.hotpatch_target, row.hotpatch_target_path, row.hotpatch_target_pkg_path,
             row.hotpatch_target_md5, row.hotpatch_target_strip_md5);
}

int32_t insert_pkg_info_table(sqlite3 *db, const cmpnt_db_request *request, int32_t mode) {
    char sql[statement_size] = {};
    if (mode == 1 || mode == 2) {
        switch (request->table) {
            case CMPNT_PACKAGE_INFO_TABLE:
                format_base_insert(sql, request->base);
                break;
            case CMPNT_PKG_UPGRADE_TABLE:
            case CMPNT_AUTO_SYNC_TABLE:
                cmpnt_set_insert_table_value(sql, table_name(request->table), &request->record);
                break;
            case CMPNT_SERVER_TABLE:
                format_server_insert(sql, *request);
                break;
            default:
                break;
        }
    }
    return run_statement(db, sql, __func__);
}
