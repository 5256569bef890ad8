// Marker files: small files in the temporary directory that programs tell each other things with.
#include <errno.h>
#include <fcntl.h>
#include <string.h>
#include <unistd.h>

#include "common/guard.hh"
#include "common/log.hh"
#include "common/temp_path.hh"

int32_t cmpnt_touch_tmp_file(const char *name) {
    char path[CMPNT_PATH_SIZE] = {};
    if (!make_temp_path(__func__, TempFile::marker, name, path)) {
        return -1;
    }
    // Wider than other files: any program may write to a marker.
    Descriptor file(open(path, O_RDWR | O_CREAT | O_CLOEXEC, 0777));
    if (!file) {
        CMPNT_LOG(log_error, "open tmp file(%s) fail, error(%s).\n", name, strerror(errno));
        return -1;
    }
    return 0;
}

int32_t cmpnt_rm_file(const char *name) {
    char path[CMPNT_PATH_SIZE] = {};
    if (!make_temp_path(__func__, TempFile::marker, name, path)) {
        return -1;
    }
    if (path[strspn(path, "/")] == '\0') {
        return -1;  // an empty TMPDIR must not make it remove the root
    }
    cmpnt_system_cmd_run("rm -rf", path);
    return 0;
}

int32_t cmpnt_get_info_from_tmp_file(const char *name, char *value, int32_t size) {
    if (name == nullptr || value == nullptr) {
        CMPNT_LOG(log_error, "cmpnt_get_tmp_strcat_path fail\n");
        return -1;
    }
    if (size > 0) {
        memset(value, 0, static_cast<size_t>(size));
    }
    char path[CMPNT_PATH_SIZE] = {};
    if (cmpnt_get_tmp_strcat_path(name, path, sizeof(path)) != 0) {
        CMPNT_LOG(log_error, "cmpnt_get_tmp_strcat_path fail\n");
        return -1;
    }
    if (cmpnt_get_value_from_file(value, size, path) != 0) {
        CMPNT_LOG(log_error, "cmpnt_get_value_from_file fail\n");
        return -1;
    }
    return 0;
}
