// Paths in the temporary directory.
#include <string.h>

#include "common/log.hh"
#include "common/temp_path.hh"

int32_t cmpnt_strcat_tmp_and_name(const char *name, char *path, int32_t size) {
    if (name == nullptr || path == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return -1;
    }
    if (size > 0) {
        memset(path, 0, static_cast<size_t>(size));
    }
    switch (join_temp_path(name, path, size)) {
        case TempPath::made:
            return 0;
        case TempPath::no_directory:
            CMPNT_LOG(log_error, "cmpnt_get_tmpdir fail.\n");
            return -1;
        default:
            CMPNT_LOG(log_error, "path(%s) and name(%s) len >= %d\n", path, name, size);
            return -1;
    }
}
