// Walks of an unpacked package against the global hash list.
#ifndef CMPNT_VERIFY_TREE_DIGEST_HH
#define CMPNT_VERIFY_TREE_DIGEST_HH

#include "libcmpnt_db.h"
#include "verify/dynamic_whitelist.hh"
#include "verify/global_whitelist.hh"
#include "verify/hash_list.hh"

// What every file is held against, for the time of the walks.
struct TreeLists {
    const HashIndex digests;
    GlobalWhitelist global_whitelist;
    DynamicWhitelist dynamic_whitelist;
};

// As the exported function of this name, messages included.
int32_t cmpnt_global_hash_file_verify(const char *directory, TreeLists &lists);

#endif
