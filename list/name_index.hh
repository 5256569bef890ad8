// A hash index over the names of a list's nodes, for the time of one load: it gives the answers of a
// walk from the head without the walk.
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

enum class NameKey { patch_and_package, package };

// Names are compared as far as a record holds them, so a longer text stands for what a record would
// keep of it. With NameKey::package the patch name is not looked at and may be null.
const cmpnt_upgrade_node *first_node_with_names(const cmpnt_list_head *list, NameKey key,
                                                const char *patch_name, const char *pkg_name);

class NameIndex {
public:
    NameIndex(const cmpnt_list_head *list, NameKey key);
    NameIndex(const NameIndex &) = delete;
    NameIndex &operator=(const NameIndex &) = delete;
    ~NameIndex();

    // What first_node_with_names() answers now.
    const cmpnt_upgrade_node *find(const char *patch_name, const char *pkg_name) const;

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
    size_t slot_of(uint32_t hash, const char *patch_name, const char *pkg_name) const;
    void place(const cmpnt_upgrade_node *node);

    const cmpnt_list_head *list_;
    NameKey key_;
    bool walks_ = false;  // for good: memory was out
    Slot *slots_ = nullptr;
    size_t capacity_ = 0;  // a power of two; 0: the list is walked
    size_t nodes_ = 0;     // in the list
};

#endif
