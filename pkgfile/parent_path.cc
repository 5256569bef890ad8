// A path cut down to the directory of its file.
#include <string.h>

#include "common/log.hh"

int32_t get_path_exclude_file_name(char *path) {
    if (path == nullptr) {
        CMPNT_LOG(log_error, "input param is null.\n");
        return -1;
    }
    char *slash = strrchr(path, '/');
    if (slash == nullptr) {
        CMPNT_LOG(log_error, "str is null.\n");
        return -1;
    }
    *slash = '\0';
    return 0;
}
