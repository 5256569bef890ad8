// The signed list of installed files that are never checked.
#ifndef CMPNT_VERIFY_GLOBAL_WHITELIST_HH
#define CMPNT_VERIFY_GLOBAL_WHITELIST_HH

#include "verify/file_index.hh"

// For many questions: has() answers what file_exist_in_global_whitelist() would.
class GlobalWhitelist {
public:
    GlobalWhitelist();
    bool has(const char *path);

private:
    FileIndex index_;
};

#endif
