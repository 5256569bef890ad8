// Upgrade records by what makes them duplicates.
//
//     NameIndex index(&cmpnt_upgrade_list, NameKey::patch_and_package);
//     ... cmpnt_add_upgrade_value_to_list(record, CMPNT_UPGRADE_LIST, &index) for each row ...
#ifndef CMPNT_LIST_NAME_INDEX_HH
#define CMPNT_LIST_NAME_INDEX_HH

#include "list/list_index.hh"

// What makes two records duplicates. Names are compared as far as a record holds them.
enum class NameKey { patch_and_package, package, patch, smu_id_and_patch };

// The first node that is a duplicate of the record by this key.
const cmpnt_upgrade_node *first_node_like(const cmpnt_list_head *list, NameKey key,
                                          const cmpnt_upgrade_value &record);

class NameIndex {
public:
    NameIndex(const cmpnt_list_head *list, NameKey key);

    // What first_node_like() answers now.
    const cmpnt_upgrade_node *find(const cmpnt_upgrade_value &record) const;

    // The node was appended to the list.
    void add(const cmpnt_upgrade_node *node) { index_.add(&node->link); }

private:
    ListIndex index_;
};

#endif
