// What the exported add functions of the upgrade lists are made of, for loads that read many rows,
// and the owner of a node.
#ifndef CMPNT_LIST_UPGRADE_LIST_HH
#define CMPNT_LIST_UPGRADE_LIST_HH

#include "common/guard.hh"
#include "libcmpnt_db.h"
#include "list/name_index.hh"

// As the exported functions of these names, messages included. The index, which may be null, belongs
// to the list that is added to, with the key of the function's test: patch_and_package, then package.
int32_t cmpnt_add_upgrade_value_to_list(const cmpnt_upgrade_value &record, int32_t list,
                                        NameIndex *index);
int32_t cmpnt_add_to_upgrade_list_by_pkg_name(const cmpnt_upgrade_value &record, NameIndex *index);

struct UpgradeNodeTraits {
    using Value = cmpnt_upgrade_node *;
    static Value none() { return nullptr; }
    static void release(Value node) { cmpnt_free_pointer(node); }
};
using OwnedUpgradeNode = ScopeGuard<UpgradeNodeTraits>;

#endif
