// Entries of a directory that is walked.
#ifndef CMPNT_COMMON_DIRECTORY_ENTRY_HH
#define CMPNT_COMMON_DIRECTORY_ENTRY_HH

#include <string.h>

// "." and "..", which no walk goes into.
inline bool is_self_or_parent(const char *name) {
    return strcmp(name, ".") == 0 || strcmp(name, "..") == 0;
}

#endif
