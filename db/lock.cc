// The database lock: one POSIX record lock for all processes.
#include <errno.h>
#include <fcntl.h>
#include <string.h>
#include <unistd.h>

#include "common/guard.hh"
#include "common/log.hh"
#include "common/standard_streams.hh"

namespace {

constexpr char lock_path[] = "/tmp/.cmpnt_db_lock";

// Never standard input, output or error: a command run redirects and closes those, and closing any
// descriptor of the lock file would release the lock in the middle of an exchange.
int open_lock_file() {
    return clear_of_standard_streams(open(lock_path, O_RDWR | O_CREAT | O_CLOEXEC, 0777));
}

// Waits until the lock is granted; a signal does not end the wait.
int lock_whole_file(int fd) {
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    int result;
    do {
        result = fcntl(fd, F_SETLKW, &lock);
    } while (result == -1 && errno == EINTR);
    return result;
}

}  // namespace

int32_t cmpnt_open_db_flock(void) {
    Descriptor file(open_lock_file());
    if (!file) {
        CMPNT_LOG(log_error, "open flock fail, error(%s).\n", strerror(errno));
        return -1;
    }
    if (lock_whole_file(file.get()) == -1) {
        CMPNT_LOG(log_error, "open flock name(%s) fail, error(%s).\n", lock_path, strerror(errno));
        return -1;
    }
    return file.release();
}
