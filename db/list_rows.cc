// Rows into lists.
#include "db/list_rows.hh"

#include "common/log.hh"
#include "libcmpnt_db.h"
#include "list/sync_list.hh"
#include "list/upgrade_list.hh"

bool RowReader::read(const Row &row, const char *callback) {
    if (row.is_null()) {
        CMPNT_LOG_AS(log_error, callback, "input param is null.\n");
        return false;
    }
    set_global_info_from_db(&record, row, copier);
    return true;
}

int select_current_callback(void *list_load, int columns, char **values, char **names) {
    ListLoad &load = *static_cast<ListLoad *>(list_load);
    if (!load.read({columns, values, names}, __func__)) {
        return -1;
    }
    cmpnt_add_to_upgrade_list_by_pkg_name(load.record, &load.names);
    return 0;
}

int select_all_to_list_callback(void *list_load, int columns, char **values, char **names) {
    ListLoad &load = *static_cast<ListLoad *>(list_load);
    if (!load.read({columns, values, names}, __func__)) {
        return -1;
    }
    cmpnt_add_upgrade_value_to_list(load.record, CMPNT_UPGRADE_LIST, &load.names);
    return 0;
}

int select_to_list_by_pkg_version_cb(void *row_reader, int columns, char **values, char **names) {
    RowReader &reader = *static_cast<RowReader *>(row_reader);
    if (!reader.read({columns, values, names}, __func__)) {
        return -1;
    }
    cmpnt_add_to_list_by_pkg_version(&reader.record);
    return 0;
}

int select_to_list_by_smu_cb(void *list_load, int columns, char **values, char **names) {
    ListLoad &load = *static_cast<ListLoad *>(list_load);
    if (!load.read({columns, values, names}, __func__)) {
        return -1;
    }
    cmpnt_add_to_list_by_smu(load.record, &load.names);
    return 0;
}

int select_to_list_by_single_patch_cb(void *list_load, int columns, char **values, char **names) {
    ListLoad &load = *static_cast<ListLoad *>(list_load);
    if (!load.read({columns, values, names}, __func__)) {
        return -1;
    }
    cmpnt_add_to_list_by_single(load.record, &load.names);
    return 0;
}

// The directory is asked first, of each row: looking also rids it of stray files.
int select_to_auto_sync_list_cb(void *list_load, int columns, char **values, char **names) {
    ListLoad &load = *static_cast<ListLoad *>(list_load);
    if (!load.read({columns, values, names}, __func__)) {
        return -1;
    }
    if (smu_dir_path_is_null(load.record.patch_name) == 0 &&
        smu_name_is_in_auto_sync_list(load.record, load.names) == 0) {
        insert_auto_sync_node_to_list(load.record, load.names);
    }
    return 0;
}

int select_all_to_hp_list_callback(void *list_load, int columns, char **values, char **names) {
    ListLoad &load = *static_cast<ListLoad *>(list_load);
    if (!load.read({columns, values, names}, __func__)) {
        return -1;
    }
    cmpnt_add_upgrade_value_to_list(load.record, CMPNT_HP_LIST, &load.names);
    return 0;
}
