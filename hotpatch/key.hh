// The keys that criteria may name, and what of an upgrade record each stands for.
#ifndef CMPNT_HOTPATCH_KEY_HH
#define CMPNT_HOTPATCH_KEY_HH

#include "libcmpnt_db.h"

struct HotpatchKey {
    enum Kind { text, hot_patch_bit };

    const char *name;
    Kind kind;
    bool can_be_packed;
    size_t offset;  // of a text in the record

    const char *text_of(const cmpnt_upgrade_value &record) const {
        return reinterpret_cast<const char *>(&record) + offset;
    }
};

// Null for a name that is no key.
const HotpatchKey *find_hotpatch_key(const char *name);

#endif
