// Descriptors and streams: closing, syncing and status flags, with every failure logged.
#include <errno.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include "common/log.hh"

int32_t cmpnt_close(int32_t fd) {
    if (fd < 0) {
        CMPNT_LOG(log_error, "fd fail, fd(%d)\n", fd);
        return -1;
    }
    if (close(fd) != 0) {
        CMPNT_LOG(log_error, "close fail, errno(%d), strerror(%s)\n", errno, strerror(errno));
        return -1;
    }
    return 0;
}

int32_t cmpnt_fclose(FILE *stream) {
    if (stream == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return -1;
    }
    if (fclose(stream) != 0) {
        CMPNT_LOG(log_error, "fclose fail, errno(%d), strerror(%s)\n", errno, strerror(errno));
        return -1;
    }
    return 0;
}

int32_t cmpnt_sync(void) {
    sync();
    return 0;
}

int32_t cmpnt_fsync(int32_t fd) {
    if (fsync(fd) != 0) {
        CMPNT_LOG(log_error, "fsync fail, error(%s), fd(%d)\n", strerror(errno), fd);
        return -1;
    }
    return 0;
}

int32_t cmpnt_set_file_nonblock(FILE *stream, uint32_t flags) {
    if (stream == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return -1;
    }
    const int fd = fileno(stream);
    if (fd < 0) {
        CMPNT_LOG(log_error, "fileno fail, errno(%d), error(%s)\n", errno, strerror(errno));
        return -1;
    }
    cmpnt_set_recv_flag(fd, flags);
    return 0;
}
