// Things by their names: a hash table that keeps pointers to both, for the time of one walk.
#ifndef CMPNT_VERIFY_NAME_TABLE_HH
#define CMPNT_VERIFY_NAME_TABLE_HH

#include <stddef.h>
#include <stdint.h>

class NameTable {
public:
    NameTable() = default;
    NameTable(const NameTable &) = delete;
    NameTable &operator=(const NameTable &) = delete;
    ~NameTable();

    // Of several things of one name the first; null when there is none.
    const void *find(const char *name) const;

    // The name stays where it is while the table lives. False when memory is out: the table is as it
    // was.
    bool add(const char *name, const void *thing);

private:
    struct Slot {
        const char *name;  // null: free
        const void *thing;
        uint32_t hash;
    };

    bool grow();
    Slot &slot_of(uint32_t hash, const char *name) const;

    Slot *slots_ = nullptr;
    size_t capacity_ = 0;  // a power of two
    size_t names_ = 0;     // at most half of it
};

#endif
