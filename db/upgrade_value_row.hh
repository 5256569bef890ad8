// Rows of pkg_upgrade_table and auto_sync_table as the records that the lists hold.
#ifndef CMPNT_DB_UPGRADE_VALUE_ROW_HH
#define CMPNT_DB_UPGRADE_VALUE_ROW_HH

#include "db/row.hh"
#include "libcmpnt_db.h"

// A copier of rows into cmpnt_upgrade_value, for one statement.
RowCopier upgrade_value_copier();

// Replaces the whole record by the row.
void set_global_info_from_db(cmpnt_upgrade_value *record, const Row &row, RowCopier &copier);

#endif
