// Paths of files in the temporary directory, for functions that say themselves what goes wrong.
#include "common/tmp_path.hh"

#include <string.h>

#include "common/log.hh"

bool make_tmp_path(const char *function, TmpFile kind, const char *name,
                   char (&path)[CMPNT_PATH_SIZE]) {
    if (name == nullptr) {
        CMPNT_LOG_AS(log_error, function, "param is null.\n");
        return false;
    }
    if (cmpnt_get_tmpdir(path, CMPNT_PATH_SIZE) == nullptr) {
        CMPNT_LOG_AS(log_error, function, "cmpnt_get_tmpdir fail.\n");
        return false;
    }
    const size_t directory_length = strlen(path);
    const size_t name_length = strlen(name);
    if (name_length < CMPNT_PATH_SIZE - directory_length) {
        memcpy(path + directory_length, name, name_length + 1);
        return true;
    }
    if (kind == TmpFile::LOCK) {
        CMPNT_LOG_AS(log_error, function, "path(%s) and lock(%s) len >= %d\n", path, name,
                     CMPNT_PATH_SIZE);
    } else {
        CMPNT_LOG_AS(log_error, function, "path(%s) and file(%s) len >= %d\n", path, name,
                     CMPNT_PATH_SIZE);
    }
    return false;
}
