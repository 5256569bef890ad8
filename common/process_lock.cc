// The single-instance lock of a process: a record lock on a file, which goes with the process.
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include "common/guard.hh"
#include "common/log.hh"
#include "common/standard_streams.hh"
#include "common/temp_path.hh"

namespace {

bool make_lock_directory(const char *function, const char *path) {
    char directory[CMPNT_PATH_SIZE];
    if (cmpnt_memcpy(directory, path, sizeof(directory), static_cast<int32_t>(strlen(path))) != 0) {
        CMPNT_LOG_AS(log_error, function, "cmpnt_memcpy fail.\n");
        return false;
    }
    get_path_exclude_file_name(directory);
    cmpnt_mkdir(directory);
    return true;
}

// Never 0, which would read as "already running". Not close-on-exec: a process that executes another
// program is still the one that holds the lock.
int open_lock_file(const char *path) {
    return clear_of_standard_streams(open(path, O_RDWR | O_CREAT, 0777), F_DUPFD);
}

bool take_write_lock(int fd) {
    struct flock whole_file = {};
    whole_file.l_type = F_WRLCK;
    whole_file.l_whence = SEEK_SET;
    return fcntl(fd, F_SETLK, &whole_file) != -1;
}

// The calling process's own name, as the kernel shows it; empty when it cannot be read.
void read_own_name(char (&name)[CMPNT_LINE_SIZE]) {
    char path[64];
    snprintf(path, sizeof(path), "/proc/%d/status", static_cast<int>(getpid()));
    Stream status(fopen(path, "re"));
    char line[CMPNT_LINE_SIZE];
    name[0] = '\0';
    if (status && fgets(line, sizeof(line), status.get()) != nullptr) {
        sscanf(line, "%*s %1023s", name);
    }
}

}  // namespace

int32_t cmpnt_process_is_running(const char *lock_name) {
    char path[CMPNT_PATH_SIZE] = {};
    if (!make_temp_path(__func__, TempFile::lock, lock_name, path) ||
        !make_lock_directory(__func__, path)) {
        return -1;
    }
    Descriptor lock(open_lock_file(path));
    if (!lock) {
        CMPNT_LOG(log_error, "open file(%s) fail, err: %s.\n", path, strerror(errno));
        return -1;
    }
    if (take_write_lock(lock.get())) {
        CMPNT_LOG(log_trace, "process lock success, lock_fd(%d), pid(%d)\n", lock.get(),
                  static_cast<int>(getpid()));
        return lock.release();
    }
    if (errno != EAGAIN && errno != EACCES) {
        CMPNT_LOG(log_error, "lock file (%s) fail, err: %s", path, strerror(errno));
        return -1;
    }
    char name[CMPNT_LINE_SIZE];
    read_own_name(name);
    CMPNT_LOG(log_trace, "the process(%s) is already running.\n", name);
    return 0;
}
