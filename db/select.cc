// A whole table, each row handed to what the mode wants done with it.
#include "db/select.hh"

#include <sqlite3.h>
#include <stdio.h>

#include "db/clear.hh"
#include "db/list_rows.hh"
#include "db/statement.hh"
#include "db/tables.hh"
#include "libcmpnt_db.h"

namespace {

// What a row callback takes as its context, new for each select.
enum class RowContext { header_counter, row_reader, list_load, argument };

struct RowMode {
    int32_t mode;
    sqlite3_callback callback;
    RowContext context;
    // Of a list load: the list, and the names by which it knows duplicates.
    const cmpnt_list_head *list = nullptr;
    NameKey key = NameKey::package;
};

constexpr RowMode row_modes[] = {
    {CMPNT_ROWS_SHOW_ALL, select_all_callback, RowContext::header_counter},
    {CMPNT_ROWS_SHOW_ACTIVE, select_active_callback, RowContext::header_counter},
    {CMPNT_ROWS_SHOW_RUNNING, select_running_callback, RowContext::header_counter},
    {CMPNT_ROWS_BY_PKG_NAME, select_current_callback, RowContext::list_load, &cmpnt_upgrade_list,
     NameKey::package},
    {CMPNT_ROWS_TO_UPGRADE_LIST, select_all_to_list_callback, RowContext::list_load,
     &cmpnt_upgrade_list, NameKey::patch_and_package},
    {CMPNT_ROWS_CLEAR, select_clear_callback, RowContext::argument},
    {CMPNT_ROWS_NOT_INSTALLED, select_to_list_by_pkg_version_cb, RowContext::row_reader},
    {CMPNT_ROWS_BY_SMU, select_to_list_by_smu_cb, RowContext::list_load, &cmpnt_upgrade_list,
     NameKey::patch},
    {CMPNT_ROWS_SINGLE_PATCHES, select_to_list_by_single_patch_cb, RowContext::list_load,
     &cmpnt_upgrade_list, NameKey::smu_id_and_patch},
    {CMPNT_ROWS_TO_AUTO_SYNC, select_to_auto_sync_list_cb, RowContext::list_load, &auto_sync_list,
     NameKey::patch},
    {CMPNT_ROWS_TO_HP_LIST, select_all_to_hp_list_callback, RowContext::list_load, &cmpnt_hp_list,
     NameKey::patch_and_package},
};

const RowMode *find_mode(int32_t mode) {
    for (const RowMode &known : row_modes) {
        if (known.mode == mode) {
            return &known;
        }
    }
    return nullptr;
}

int32_t run_select(sqlite3 *db, const char *sql, const RowMode &mode, uint32_t arg,
                   const char *function) {
    switch (mode.context) {
        case RowContext::header_counter: {
            int32_t header_was_printed = 0;
            return run_statement(db, sql, function, mode.callback, &header_was_printed);
        }
        case RowContext::row_reader: {
            RowReader reader;
            return run_statement(db, sql, function, mode.callback, &reader);
        }
        case RowContext::list_load: {
            ListLoad load(mode.list, mode.key);
            return run_statement(db, sql, function, mode.callback, &load);
        }
        default:
            return run_statement(db, sql, function, mode.callback,
                                 reinterpret_cast<void *>(static_cast<uintptr_t>(arg)));
    }
}

}  // namespace

void format_select(char (&sql)[select_size], int32_t table) {
    const char *name = table_name(table);
    sql[0] = '\0';
    if (name != nullptr) {
        snprintf(sql, sizeof(sql), "select *from %s", name);
    }
}

int32_t select_pkg_info_table(sqlite3 *db, int32_t table, int32_t mode, uint32_t arg) {
    if (db == nullptr) {
        return -1;
    }
    const RowMode *known = find_mode(mode);
    if (known == nullptr) {
        return 0;
    }
    char sql[select_size];
    format_select(sql, table);
    return run_select(db, sql, *known, arg, __func__);
}
