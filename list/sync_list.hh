// The test and the add of the synchronisation lists, for loads that read many rows.
#ifndef CMPNT_LIST_SYNC_LIST_HH
#define CMPNT_LIST_SYNC_LIST_HH

#include "libcmpnt_db.h"
#include "list/name_index.hh"

// As the exported functions of these names, messages included. The index belongs to auto_sync_list,
// with NameKey::patch.
int32_t smu_name_is_in_auto_sync_list(const cmpnt_upgrade_value &record, const NameIndex &index);
int32_t insert_auto_sync_node_to_list(const cmpnt_upgrade_value &record, NameIndex &index);

#endif
