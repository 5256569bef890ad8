// Appending one line to a file that need not exist yet.
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include "common/log.hh"
#include "common/parent_directory.hh"

namespace {

constexpr mode_t file_mode = 0755;

// What is there is never created anew: a link that leads nowhere keeps leading nowhere.
int open_to_append(const char *path) {
    if (file_is_exist(path) != 0) {
        return open(path, O_WRONLY | O_APPEND | O_NONBLOCK | O_CLOEXEC, file_mode);
    }
    create_parent_directory(path);
    return open(path, O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, file_mode);
}

}  // namespace

int32_t cmpnt_write_to_file(const char *text, const char *path) {
    if (text == nullptr || path == nullptr) {
        CMPNT_LOG(log_client_error, "param is null.\n");
        return -1;
    }
    const int fd = open_to_append(path);
    if (fd < 0) {
        CMPNT_LOG(log_client_error, "open file(%s) fail, error(%s).\n", path, strerror(errno));
        return -1;
    }
    char line[CMPNT_LINE_SIZE];
    snprintf(line, sizeof(line), "%s\n", text);
    if (write(fd, line, strlen(line)) < 0) {
        // A line lost to a full disk is not the caller's failure.
    }
    cmpnt_fsync(fd);
    cmpnt_close(fd);
    return 0;
}
