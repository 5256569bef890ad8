// A hash index over what a list's nodes are known by, for the time of one load or walk: it gives the
// answers of a walk from the head without the walk.
//
// While it lives, nodes are only appended to the list, and each is told to it. A short list is walked
// and costs no memory; when memory is out, any list is.
#ifndef CMPNT_LIST_LIST_INDEX_HH
#define CMPNT_LIST_LIST_INDEX_HH

#include <stddef.h>
#include <stdint.h>

#include "libcmpnt_db.h"

// What nodes are known by, a text or a record: the three agree on what a name points to.
struct ListKey {
    const void *(*name_of)(const cmpnt_list_head *link);
    uint32_t (*hash)(const void *name);
    bool (*is_same)(const void *a, const void *b);
};

constexpr uint32_t hash_basis = 2166136261u;

uint32_t hash_text(const char *text, size_t limit, uint32_t hash = hash_basis);

// The first node of the name, by a walk; null when there is none.
const cmpnt_list_head *first_of_name(const cmpnt_list_head *list, const ListKey &key,
                                     const void *name);

class ListIndex {
public:
    ListIndex(const cmpnt_list_head *list, const ListKey &key);
    ListIndex(const ListIndex &) = delete;
    ListIndex &operator=(const ListIndex &) = delete;
    ~ListIndex();

    // What first_of_name() answers now.
    const cmpnt_list_head *find(const void *name) const;

    // The node was appended to the list.
    void add(const cmpnt_list_head *link);

private:
    struct Slot {
        const cmpnt_list_head *link;  // null: free
        uint32_t hash;
    };

    void place(const cmpnt_list_head *link);
    bool grow();
    Slot &slot_of(uint32_t hash, const void *name) const;
    template <class IsWanted>
    Slot &probe(uint32_t hash, IsWanted is_wanted) const;

    const cmpnt_list_head *list_;
    const ListKey &key_;
    bool walks_ = false;     // for good: memory was out
    Slot *slots_ = nullptr;  // null: the list is walked
    size_t capacity_ = 0;    // a power of two
    size_t names_ = 0;       // at most half of it
    size_t nodes_ = 0;       // in the list
};

#endif
