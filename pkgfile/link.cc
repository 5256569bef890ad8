// Symbolic links.
#include <unistd.h>

#include "common/log.hh"

int32_t is_link(const char *path) {
    char target[1023];
    if (path == nullptr || readlink(path, target, sizeof(target)) < 0) {
        return 0;
    }
    CMPNT_LOG(log_trace, "file(%s) is a link.\n", path);
    return 1;
}
