// Row callbacks that load lists, and what they carry from row to row of one load.
#ifndef CMPNT_DB_LIST_ROWS_HH
#define CMPNT_DB_LIST_ROWS_HH

#include "db/upgrade_value_row.hh"
#include "list/name_index.hh"

struct RowReader {
    // Reads the row into the record; false, logged in the callback's name, when there is no row.
    bool read(const Row &row, const char *callback);

    RowCopier copier = upgrade_value_copier();
    cmpnt_upgrade_value record;
};

// With the names that the list holds, for the callback's test for duplicates.
struct ListLoad : RowReader {
    ListLoad(const cmpnt_list_head *list, NameKey key) : names(list, key) {}

    NameIndex names;
};

// A row that is not added, be it a duplicate or for want of memory, never stops a load.
int select_current_callback(void *list_load, int columns, char **values, char **names);
int select_all_to_list_callback(void *list_load, int columns, char **values, char **names);
int select_to_list_by_pkg_version_cb(void *row_reader, int columns, char **values, char **names);
int select_to_list_by_smu_cb(void *list_load, int columns, char **values, char **names);
int select_to_list_by_single_patch_cb(void *list_load, int columns, char **values, char **names);
int select_to_auto_sync_list_cb(void *list_load, int columns, char **values, char **names);
int select_all_to_hp_list_callback(void *list_load, int columns, char **values, char **names);

#endif
