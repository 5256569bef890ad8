// Status flags of descriptors: non-blocking mode and the like.
#include <errno.h>
#include <fcntl.h>
#include <string.h>

#include "common/log.hh"

// A failure is said in the log alone: callers go on with the descriptor as it is.
int32_t cmpnt_set_recv_flag(int32_t fd, uint32_t flags) {
    const int current = fcntl(fd, F_GETFL, 0);
    if (current < 0) {
        CMPNT_LOG(log_error, "fcntl F_GETFL fail, error(%s).\n", strerror(errno));
        return 0;
    }
    const uint32_t wanted = static_cast<uint32_t>(current) | flags;
    if (wanted == static_cast<uint32_t>(current)) {
        return current;
    }
    const int result = fcntl(fd, F_SETFL, static_cast<int>(wanted));
    if (result < 0) {
        CMPNT_LOG(log_error, "fcntl F_SETFL fail, error(%s).\n", strerror(errno));
        return 0;
    }
    return result;
}
