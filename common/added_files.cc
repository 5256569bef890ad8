// The listing of the package files that have been added: to the operator's terminal or the system log.
#include "common/added_files.hh"

#include <dirent.h>
#include <errno.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>

#include "common/directory_entry.hh"
#include "common/guard.hh"
#include "common/log.hh"

namespace {

enum : uint32_t { TO_TERMINAL = 2, TO_SYSLOG = 3 };

constexpr const char *added_directories[] = {
    "/data/cmpnt/opkg/download",
    "/var/cache/opkg/download",
    "/var/cache/opkg/backup",
};

#define SHOW(mode, format, ...)                                                                    \
    do {                                                                                           \
        if ((mode) == TO_TERMINAL) {                                                               \
            cli_printf(format, ##__VA_ARGS__);                                                     \
        } else if ((mode) == TO_SYSLOG) {                                                          \
            CMPNT_SHOW(show_added_files, format, ##__VA_ARGS__);                                   \
        }                                                                                          \
    } while (0)

// The colon behind the name is the terminal's alone.
void show_bundle(uint32_t mode, const char *name) {
    if (mode == TO_TERMINAL) {
        cli_printf("\n      smu name: %s:\n", name);
    } else if (mode == TO_SYSLOG) {
        CMPNT_SHOW(show_added_files, "\n      smu name: %s\n", name);
    }
}

// A path that does not fit cannot be looked at: cut, it would name the directory itself again, and the
// walk would never end.
bool look_at(const char *directory, const char *name, char (&path)[CMPNT_PATH_SIZE],
             struct stat &status) {
    const int length = snprintf(path, sizeof(path), "%s/%s", directory, name);
    if (length < 0 || static_cast<size_t>(length) >= sizeof(path)) {
        errno = ENAMETOOLONG;
        return false;
    }
    return lstat(path, &status) == 0;
}

}  // namespace

int32_t cmpnt_traverse_all_add_file(const char *path, uint32_t mode) {
    if (path == nullptr) {
        CMPNT_LOG(log_error, "input param is error.\n");
        return -1;
    }
    Directory directory(opendir(path));
    if (!directory) {
        CMPNT_LOG(log_error, "opendir path(%s) fail.\n", path);
        return -1;
    }
    while (const struct dirent *entry = readdir(directory.get())) {
        if (is_self_or_parent(entry->d_name)) {
            continue;
        }
        char entry_path[CMPNT_PATH_SIZE];
        struct stat status;
        if (!look_at(path, entry->d_name, entry_path, status)) {
            CMPNT_LOG(log_error, "lstat error, errno(%s)\n", strerror(errno));
            return -1;
        }
        if (!S_ISDIR(status.st_mode)) {
            CMPNT_LOG(log_trace, "file: %s, size: %ld\n", entry_path,
                      static_cast<long>(status.st_size));
            SHOW(mode, "          %s:\n", entry->d_name);
            continue;
        }
        show_bundle(mode, entry->d_name);
        if (cmpnt_traverse_all_add_file(entry_path, mode) != 0) {
            CMPNT_LOG(log_error, "cmpnt_traverse_all_add_file fail, path_name(%s).\n", entry_path);
            return -1;
        }
    }
    return 0;
}

void cmpnt_show_all_add_file(uint32_t mode) {
    SHOW(mode, "Show all add files:\n");
    bool first = true;
    for (const char *path : added_directories) {
        if (!first) {
            SHOW(mode, "\n");
        }
        first = false;
        SHOW(mode, "  Traverse path %s:\n", path);
        cmpnt_traverse_all_add_file(path, mode);
    }
}
