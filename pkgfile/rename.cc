// Renaming.
#include <stdio.h>

#include "common/log.hh"

int32_t cmpnt_rename(const char *old_path, const char *new_path) {
    if (old_path == nullptr || new_path == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return -1;
    }
    if (file_is_exist(old_path) == 0) {
        CMPNT_LOG(log_error, "[rename] the src(%s) is not exist\n", old_path);
        return -1;
    }
    if (rename(old_path, new_path) != 0) {
        CMPNT_LOG(log_error, "rename error, src(%s), dest(%s), errno(%d)\n", old_path, new_path,
                  errno);
        return -1;
    }
    return 0;
}
