// A hash index over what a list's nodes are known by, for the time of one load: it gives the answers of
// a walk from the head without the walk.
//
//     NameIndex index(&cmpnt_upgrade_list, NameKey::patch_and_package);
//     ... cmpnt_add_upgrade_value_to_list(record, CMPNT_UPGRADE_LIST, &index) for each row ...
//
// While it lives, nodes are only appended to the list, and each is told to it. A short list is walked
// and costs no memory; when memory is out, any list is.
#ifndef CMPNT_LIST_NAME_INDEX_HH
#define CMPNT_LIST_NAME_INDEX_HH

#include <stddef.h>
#include <stdint.h>

#include "libcmpnt_db.h"

// What makes two records duplicates. Names are compared as far as a record holds them.
enum class NameKey { patch_and_package, package, patch, smu_id_and_patch };

// The first node that is a duplicate of the record by this key.
const cmpnt_upgrade_node *first_node_like(const cmpnt_list_head *list, NameKey key,
                                          const cmpnt_upgrade_value &record);

class NameIndex {
public:
    NameIndex(const cmpnt_list_head *list, NameKey key);
    NameIndex(const NameIndex &) = delete;
    NameIndex &operator=(const NameIndex &) = delete;
    ~NameIndex();

    // What first_node_like() answers now.
    const cmpnt_upgrade_node *find(const cmpnt_upgrade_value &record) const;

    // The node was appended to the list.
    void add(const cmpnt_upgrade_node *node);

private:
    struct Slot {
        const cmpnt_upgrade_node *node;  // null: free
        uint32_t hash;
    };

    bool resize(size_t capacity);
    void build();
    void give_up();
    size_t slot_of(uint32_t hash, const cmpnt_upgrade_value &record) const;
    void place(const cmpnt_upgrade_node *node);

    const cmpnt_list_head *list_;
    NameKey key_;
    bool walks_ = false;  // for good: memory was out
    Slot *slots_ = nullptr;
    size_t capacity_ = 0;  // a power of two; 0: the list is walked
    size_t nodes_ = 0;     // in the list
};

#endif
