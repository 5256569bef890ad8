// Rows into lists.
#include "db/list_rows.hh"

#include "common/log.hh"
#include "libcmpnt_db.h"

namespace {

// The row as a list's record; false, logged in the callback's name, when there is no row.
bool read_row(const Row &row, void *load, cmpnt_upgrade_value *record, const char *function) {
    if (row.is_null()) {
        CMPNT_LOG_AS(log_error, function, "input param is null.\n");
        return false;
    }
    set_global_info_from_db(record, row, static_cast<ListLoad *>(load)->copier);
    return true;
}

}  // namespace

int select_current_callback(void *load, int columns, char **values, char **names) {
    cmpnt_upgrade_value record;
    if (!read_row({columns, values, names}, load, &record, __func__)) {
        return -1;
    }
    cmpnt_add_to_upgrade_list_by_pkg_name(&record);
    return 0;
}

int select_all_to_list_callback(void *load, int columns, char **values, char **names) {
    cmpnt_upgrade_value record;
    if (!read_row({columns, values, names}, load, &record, __func__)) {
        return -1;
    }
    cmpnt_add_upgrade_value_to_list(&record, CMPNT_UPGRADE_LIST);
    return 0;
}

int select_to_list_by_pkg_version_cb(void *load, int columns, char **values, char **names) {
    cmpnt_upgrade_value record;
    if (!read_row({columns, values, names}, load, &record, __func__)) {
        return -1;
    }
    cmpnt_add_to_list_by_pkg_version(&record);
    return 0;
}

int select_all_to_hp_list_callback(void *load, int columns, char **values, char **names) {
    cmpnt_upgrade_value record;
    if (!read_row({columns, values, names}, load, &record, __func__)) {
        return -1;
    }
    cmpnt_add_upgrade_value_to_list(&record, CMPNT_HP_LIST);
    return 0;
}
