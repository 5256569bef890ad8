// Laying out a database file, one table a call.
#include <stdio.h>

#include "common/log.hh"
#include "db/connection.hh"
#include "db/statement.hh"
#include "db/tables.hh"

namespace {

using namespace column;

void format_package_info_table(char (&sql)[statement_size]) {
    snprintf(sql, sizeof(sql),
             "create table %s(%s text, %s text, %s text, %s integer,             %s integer, "
             "%s integer)",
             table_name(CMPNT_PACKAGE_INFO_TABLE), package_name, base_version, current_version,
             package_state, package_is_new, upgrade_count);
}

// pkg_upgrade_table and auto_sync_table are alike.
void format_upgrade_table(char (&sql)[statement_size], int32_t table) {
    snprintf(sql, sizeof(sql),
             "create table %s(%s text, %s text, %s text, %s text, %s text,        %s integer, "
             "%s integer, %s integer, %s integer, %s text, %s text, %s text, %s text,         "
             "%s text, %s integer, %s integer, %s integer, %s text, %s text, %s text, %s text,"
             "         %s text, %s text)",
             table_name(table), patch_name, pkg_name, cur_pkg_path, cur_version, last_version,
             pkg_state, card_id, cur_flag, op_flag, description, patch_ver, patch_id,
             effective_time, last_patch, patch_size, patch_type, patch_order, hotpatch_file,
             hotpatch_target, hotpatch_target_path, hotpatch_target_pkg_path, hotpatch_target_md5,
             hotpatch_target_strip_md5);
}

void format_server_table(char (&sql)[statement_size]) {
    snprintf(sql, sizeof(sql), "create table %s(%s integer, %s integer)",
             table_name(CMPNT_SERVER_TABLE), sync_id, sync_flag);
}

}  // namespace

int32_t cmpnt_create_pkg_table(int32_t table, int32_t db_type) {
    DatabaseExchange exchange;
    if (exchange.begin(db_type, __func__) != 0) {
        return -1;
    }
    char sql[statement_size] = {};
    switch (table) {
        case CMPNT_PACKAGE_INFO_TABLE:
            format_package_info_table(sql);
            break;
        case CMPNT_PKG_UPGRADE_TABLE:
        case CMPNT_AUTO_SYNC_TABLE:
            format_upgrade_table(sql, table);
            break;
        case CMPNT_SERVER_TABLE:
            format_server_table(sql);
            break;
        default:
            // The statement stays empty and succeeds: callers rely on success here.
            CMPNT_LOG(log_begin_error, "the index(%d) is error\n", table);
            break;
    }
    int32_t result = 0;
    SqliteError error;
    if (execute(exchange.db(), sql, error) != SQLITE_OK) {
        CMPNT_LOG(log_begin_error, "sqlite exec create tabale error: %s\n", error.text());
        result = -1;
    }
    return exchange.close() == SQLITE_OK ? result : -1;
}
