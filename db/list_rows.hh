// Row callbacks that load lists.
#ifndef CMPNT_DB_LIST_ROWS_HH
#define CMPNT_DB_LIST_ROWS_HH

#include "db/upgrade_value_row.hh"

// What one load carries from row to row: the context of these callbacks.
struct ListLoad {
    RowCopier copier = upgrade_value_copier();
};

// A row that is not added, be it a duplicate or for want of memory, never stops a load.
int select_current_callback(void *load, int columns, char **values, char **names);
int select_all_to_list_callback(void *load, int columns, char **values, char **names);
int select_to_list_by_pkg_version_cb(void *load, int columns, char **values, char **names);
int select_all_to_hp_list_callback(void *load, int columns, char **values, char **names);

#endif
