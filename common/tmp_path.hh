// Paths in the temporary directory, for callers that log their own failures.
#ifndef CMPNT_COMMON_TMP_PATH_HH
#define CMPNT_COMMON_TMP_PATH_HH

#include <string.h>

#include "libcmpnt_db.h"

enum class TmpPath { MADE, NO_DIRECTORY, TOO_LONG };

// The temporary directory followed directly by the name, which brings its leading slash. TOO_LONG
// leaves the directory alone in the path.
inline TmpPath make_tmp_path(const char *name, char (&path)[CMPNT_PATH_SIZE]) {
    if (cmpnt_get_tmpdir(path, CMPNT_PATH_SIZE) == nullptr) {
        return TmpPath::NO_DIRECTORY;
    }
    const size_t directory_length = strlen(path);
    const size_t name_length = strlen(name);
    if (name_length >= CMPNT_PATH_SIZE - directory_length) {
        return TmpPath::TOO_LONG;
    }
    memcpy(path + directory_length, name, name_length + 1);
    return TmpPath::MADE;
}

#endif
