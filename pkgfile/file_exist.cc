// Whether there is anything of a name, were it a link to nowhere.
#include <sys/stat.h>

#include "common/log.hh"

int32_t file_is_exist(const char *path) {
    if (path == nullptr) {
        CMPNT_LOG(log_error, "param is null.\n");
        return 0;
    }
    struct stat status;
    return lstat(path, &status) == 0 ? 1 : 0;
}
