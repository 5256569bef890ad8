// The entries of a directory that is verified: one that could not be read must not pass for one that
// has no more of them.
#ifndef CMPNT_VERIFY_DIRECTORY_ENTRIES_HH
#define CMPNT_VERIFY_DIRECTORY_ENTRIES_HH

#include <dirent.h>
#include <errno.h>

#include "common/directory_entry.hh"

// The next entry but "." and "..". Null behind the last, with errno 0, and when there is no reading on.
inline const struct dirent *next_entry(DIR *directory) {
    for (;;) {
        errno = 0;
        const struct dirent *entry = readdir(directory);
        if (entry == nullptr || !is_self_or_parent(entry->d_name)) {
            return entry;
        }
    }
}

#endif
