// What the exported functions of the list of digests are made of, for loads and checks of many files.
#ifndef CMPNT_VERIFY_HASH_LIST_HH
#define CMPNT_VERIFY_HASH_LIST_HH

#include "list/list_index.hh"

// The digests by name.
class HashIndex {
public:
    HashIndex();

    const hash_verify_list_t *find(const char *name) const;

    // The node was appended to the list.
    void add(const hash_verify_list_t *node) { index_.add(&node->link); }

private:
    ListIndex index_;
};

// The first digest listed for the name, by the index or, when that is null, by a walk.
const hash_verify_list_t *find_hash(const HashIndex *index, const char *name);

enum class HashTexts { taken, not_taken, failed };

// As the exported functions of these names, messages included; the index may be null. Of a name that
// is listed already the texts are not taken.
HashTexts cmpnt_add_hash_verify_list(char *name, char *hash_value, HashIndex *index);
int32_t cmpnt_check_patch_hash_value(const char *name, const char *directory,
                                     const HashIndex *index);

#endif
