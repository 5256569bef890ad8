// What the exported add functions of the upgrade lists are made of, for loads that read many rows:
// the same functions over a record that is still to be made, written straight into its node.
#ifndef CMPNT_LIST_UPGRADE_LIST_HH
#define CMPNT_LIST_UPGRADE_LIST_HH

#include "common/guard.hh"
#include "libcmpnt_db.h"
#include "list/name_index.hh"

// A record on its way into a list. The three texts, none of them null, serve the tests that come
// before a node is made; of the names only the first 79 bytes count.
struct UpgradeRecordSource {
    const char *patch_name;
    const char *pkg_name;
    const char *state_name;
    // Writes the whole record into a new node's value, which is all zero.
    void (*write)(const void *context, cmpnt_upgrade_value *value);
    const void *context;
};

// As the exported functions of these names, messages included. An index, when there is one, belongs
// to the list that is added to, with the key of the function's test: patch_and_package, then package.
int32_t insert_cmpnt_upgrade_db_to_list(const UpgradeRecordSource &source, int32_t list);
int32_t cmpnt_add_upgrade_value_to_list(const UpgradeRecordSource &source, int32_t list,
                                        NameIndex *index);
int32_t cmpnt_add_to_list_by_pkg_version(const UpgradeRecordSource &source);
int32_t cmpnt_add_to_upgrade_list_by_pkg_name(const UpgradeRecordSource &source, NameIndex *index);

struct UpgradeNodeTraits {
    using Value = cmpnt_upgrade_node *;
    static Value none() { return nullptr; }
    static void release(Value node) { cmpnt_free_pointer(node); }
};
using OwnedUpgradeNode = ScopeGuard<UpgradeNodeTraits>;

#endif
