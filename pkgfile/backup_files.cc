// The backup of a base package's files, one line of its file list at a time.
#include <string.h>

#include "common/log.hh"
#include "pkgfile/control_line.hh"
#include "pkgfile/stream_reader.hh"

namespace {

constexpr char backup_root[] = "/var/cache/opkg/backup/data";

int32_t formatting_failed() {
    CMPNT_LOG_AS(log_error, control_handler_name, "cmpnt_snprintf fail\n");
    return handler_error;
}

int32_t make_mirror(const char *directory) {
    if (cmpnt_mkdir(directory) == 0) {
        return 0;
    }
    CMPNT_LOG_AS(log_error, control_handler_name, "mkdir fail, dir_path(%s).\n", directory);
    return handler_error;
}

int32_t back_up_directory(const char *path) {
    char mirror[CMPNT_PATH_SIZE] = {};
    if (cmpnt_snprintf(mirror, sizeof(mirror), "%s/%s", backup_root, path) != 0) {
        return formatting_failed();
    }
    return make_mirror(mirror);
}

int32_t back_up_file(const char *path) {
    CMPNT_LOG_AS(log_trace, control_handler_name, "backup base package, path(%s).\n", path);
    char mirror[CMPNT_PATH_SIZE] = {};
    const int directory_length = static_cast<int>(strrchr(path, '/') - path);
    if (cmpnt_snprintf(mirror, sizeof(mirror), "%s%.*s", backup_root, directory_length, path) !=
        0) {
        return formatting_failed();
    }
    if (make_mirror(mirror) != 0) {
        return handler_error;
    }
    if (cmpnt_cp_file(path, mirror) != 0) {
        CMPNT_LOG_AS(log_error, control_handler_name, "cmpnt_cp_file fail\n");
        return handler_error;
    }
    return 0;
}

}  // namespace

int32_t back_up_path(const char *path) {
    const bool link = is_link(path) == 1;
    if (!link && is_dir(path) == 1) {
        return back_up_directory(path);
    }
    if (!link && file_is_exist(path) == 0) {
        CMPNT_LOG_AS(log_error, control_handler_name, "backup error, path(%s).\n", path);
        return handler_error;
    }
    return back_up_file(path);
}
