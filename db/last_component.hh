// The directory of a package file, whose last component tells what kind of directory it is.
#ifndef CMPNT_DB_LAST_COMPONENT_HH
#define CMPNT_DB_LAST_COMPONENT_HH

#include <stdio.h>
#include <string.h>

#include "libcmpnt_db.h"

// Behind the last "/"; the whole text when there is none.
inline const char *last_component(const char *path) {
    const char *slash = strrchr(path, '/');
    return slash == nullptr ? path : slash + 1;
}

// The directory of a path that fits. Of "/a//b" that is "/a": the slash left over would hide the
// component that protects a download area.
inline void directory_of(const char *path, char (&directory)[CMPNT_PATH_SIZE]) {
    snprintf(directory, sizeof(directory), "%s", path);
    get_path_exclude_file_name(directory);
    for (size_t length = strlen(directory); length > 1 && directory[length - 1] == '/'; length--) {
        directory[length - 1] = '\0';
    }
}

inline bool is_root(const char *directory) { return strcmp(directory, "/") == 0; }

#endif
