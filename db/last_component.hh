// The last component of a directory's path, which tells what kind of directory it is.
#ifndef CMPNT_DB_LAST_COMPONENT_HH
#define CMPNT_DB_LAST_COMPONENT_HH

#include <string.h>

// Behind the last "/"; the whole text when there is none.
inline const char *last_component(const char *path) {
    const char *slash = strrchr(path, '/');
    return slash == nullptr ? path : slash + 1;
}

#endif
