// The verification service's list of files that pass with another digest than the listed one.
#ifndef CMPNT_VERIFY_DYNAMIC_WHITELIST_HH
#define CMPNT_VERIFY_DYNAMIC_WHITELIST_HH

#include "verify/file_index.hh"

// By which name the service knows this library. Its library, and the data store's message, take it as
// text that they might write to.
extern char whitelist_client_name[];

enum WhitelistMode { whitelist_any_client = 0, whitelist_own_entry = 1 };

// For many questions: has() answers what file_exist_in_dynamic_whitelist() would.
class DynamicWhitelist {
public:
    DynamicWhitelist();
    bool has(const char *path, WhitelistMode mode);

private:
    FileIndex index_;
};

#endif
