// What the exported add functions of the upgrade lists are made of, for loads that read many rows,
// and the owner of a node.
#ifndef CMPNT_LIST_UPGRADE_LIST_HH
#define CMPNT_LIST_UPGRADE_LIST_HH

#include "common/guard.hh"
#include "libcmpnt_db.h"
#include "list/name_index.hh"

struct UpgradeNodeTraits {
    using Value = cmpnt_upgrade_node *;
    static Value none() { return nullptr; }
    static void release(Value node) { cmpnt_free_pointer(node); }
};
using OwnedUpgradeNode = ScopeGuard<UpgradeNodeTraits>;

// Copies the record into the node and hands that to the list; without a list it stays its owner's.
void hand_over(OwnedUpgradeNode &node, const cmpnt_upgrade_value &record, cmpnt_list_head *list);

// The first duplicate of the record in the list, by the list's index or, when that is null, by a walk.
const cmpnt_upgrade_node *find_node(const cmpnt_list_head *list, const NameIndex *index,
                                    NameKey key, const cmpnt_upgrade_value &record);

// Appends a copy to the list and tells the index, which may be null. A failure is logged in the
// function's name.
int32_t append_record(const cmpnt_upgrade_value &record, int32_t list, NameIndex *index,
                      const char *function);

// As the exported functions of these names, messages included. The index, which may be null, belongs
// to the list that is asked or added to, with the key of the function's test.
int32_t cmpnt_add_upgrade_value_to_list(const cmpnt_upgrade_value &record, int32_t list,
                                        NameIndex *patch_and_package);
int32_t cmpnt_add_to_upgrade_list_by_pkg_name(const cmpnt_upgrade_value &record,
                                              NameIndex *package);
int32_t cmpnt_is_exist_current_upgrade_list(const cmpnt_upgrade_value &record,
                                            const NameIndex *patch);
int32_t cmpnt_add_to_list_by_smu(const cmpnt_upgrade_value &record, NameIndex *patch);
int32_t cmpnt_add_to_list_by_single(const cmpnt_upgrade_value &record, NameIndex *smu_id_and_patch);

#endif
