// A file of a patch directory against the digest that the directory's list gives for its name.
#include <string.h>

#include "common/log.hh"
#include "verify/hash_list.hh"

// A file that is not listed is refused without a word.
int32_t cmpnt_check_patch_hash_value(const char *name, const char *directory,
                                     const HashIndex *index) {
    if (name == nullptr) {
        CMPNT_LOG(log_error, "param is null.\n");
        return -1;
    }
    const hash_verify_list_t *digest = find_hash(index, name);
    if (digest == nullptr) {
        return -1;
    }
    CMPNT_LOG(log_trace, "hash_check hash_name(%s) hash_value(%s)\n", digest->name,
              digest->hash_value);
    const int32_t result =
        do_verify_signature(directory != nullptr ? directory : "", name, digest->hash_value,
                            static_cast<uint32_t>(strlen(digest->hash_value)));
    if (result != 0) {
        CMPNT_LOG(log_error, "do_verify_signature fail ret(%d).\n", result);
        return -1;
    }
    return 0;
}

int32_t cmpnt_check_patch_hash_value(const char *name, const char *directory) {
    return cmpnt_check_patch_hash_value(name, directory, nullptr);
}
