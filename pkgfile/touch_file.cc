// Empty files, and whether one is there.
#include <errno.h>
#include <fcntl.h>
#include <string.h>
#include <unistd.h>

#include "common/guard.hh"
#include "common/log.hh"
#include "common/parent_directory.hh"

int32_t cmpnt_touch_file(const char *path) {
    if (path == nullptr) {
        CMPNT_LOG(log_error, "param error\n");
        return -1;
    }
    if (file_is_exist(path) != 0) {
        return 0;
    }
    create_parent_directory(path);
    Descriptor file(open(path, O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0755));
    if (!file) {
        CMPNT_LOG(log_error, "open file(%s) fail, error(%s).\n", path, strerror(errno));
        return -1;
    }
    fsync(file.get());
    return 0;
}

int32_t cmpnt_tmp_file_is_exist(const char *name) {
    if (name == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return 0;
    }
    char path[CMPNT_PATH_SIZE] = {};
    if (cmpnt_get_tmp_strcat_path(name, path, sizeof(path)) != 0) {
        CMPNT_LOG(log_error, "cmpnt_get_tmp_strcat_path fail\n");
        return 0;
    }
    return file_is_exist(path);
}
