// Directories: is there one, make one with all above it, work in one.
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "common/guard.hh"
#include "common/log.hh"

namespace {

constexpr mode_t directory_mode = 0777;  // the umask narrows it

// Makes what is missing of a path that ends with "/"; path is as it was when all went well.
int32_t make_each_directory(char *path) {
    for (char *end = path + 1; *end != '\0'; end++) {
        if (*end != '/') {
            continue;
        }
        *end = '\0';
        if (access(path, F_OK) != 0 && mkdir(path, directory_mode) != 0) {
            return -1;
        }
        *end = '/';
    }
    return 0;
}

}  // namespace

int32_t is_dir(const char *path) {
    if (path == nullptr) {
        CMPNT_LOG(log_error, "dir_path is null.\n");
        return 0;
    }
    return Directory(opendir(path)) ? 1 : 0;
}

int32_t cmpnt_mkdir(const char *path) {
    const size_t length = path == nullptr ? 0 : strlen(path);
    if (path == nullptr || length >= CMPNT_PATH_SIZE - 1) {
        CMPNT_LOG(log_error, "param is null\n");
        return -1;
    }
    if (length >= CMPNT_PATH_SIZE) {
        CMPNT_LOG(log_error, "dir(%s) length is too long.\n", path);
        return -1;
    }
    if (is_dir(path) != 0) {
        return 0;
    }
    char buffer[CMPNT_PATH_SIZE] = {};
    memcpy(buffer, path, length);
    if (length == 0 || buffer[length - 1] != '/') {
        buffer[length] = '/';
    }
    if (buffer[1] == '\0') {
        return 0;
    }
    if (make_each_directory(buffer) != 0) {
        CMPNT_LOG(log_error, "mkdir error, dir(%s), errno(%d)\n", path, errno);
        return -1;
    }
    return 0;
}

int32_t cmpnt_chdir(const char *path) {
    if (path == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return -1;
    }
    if (chdir(path) != 0) {
        CMPNT_LOG(log_error, "chdir to (%s) error, errno(%d)\n", path, errno);
        return -1;
    }
    return 0;
}
