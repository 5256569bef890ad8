// Paths in the temporary directory.
#include <string.h>

#include "common/log.hh"

int32_t cmpnt_strcat_tmp_and_name(const char *name, char *path, int32_t size) {
    if (name == nullptr || path == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return -1;
    }
    if (size > 0) {
        memset(path, 0, static_cast<size_t>(size));
    }
    if (cmpnt_get_tmpdir(path, size) == nullptr) {
        CMPNT_LOG(log_error, "cmpnt_get_tmpdir fail.\n");
        return -1;
    }
    const size_t directory_length = strlen(path);
    const size_t name_length = strlen(name);
    if (directory_length + name_length >= static_cast<size_t>(size)) {
        CMPNT_LOG(log_error, "path(%s) and name(%s) len >= %d\n", path, name, size);
        return -1;
    }
    memcpy(path + directory_length, name, name_length + 1);
    return 0;
}
