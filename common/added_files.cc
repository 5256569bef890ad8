// The listing of the package files that have been added: to the operator's terminal or the system log.
#include "common/added_files.hh"

#include <dirent.h>
#include <errno.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>

#include "common/guard.hh"
#include "common/log.hh"

namespace {

enum : uint32_t { TO_TERMINAL = 2, TO_SYSLOG = 3 };

constexpr const char *added_directories[] = {
    "/data/cmpnt/opkg/download",
    "/var/cache/opkg/download",
    "/var/cache/opkg/backup",
};

void show_title(uint32_t mode) {
    if (mode == TO_TERMINAL) {
        cli_printf("Show all add files:\n");
    } else if (mode == TO_SYSLOG) {
        CMPNT_SHOW(show_added_files, "Show all add files:\n");
    }
}

void show_directory(uint32_t mode, const char *path) {
    if (mode == TO_TERMINAL) {
        cli_printf("  Traverse path %s:\n", path);
    } else if (mode == TO_SYSLOG) {
        CMPNT_SHOW(show_added_files, "  Traverse path %s:\n", path);
    }
}

void show_separator(uint32_t mode) {
    if (mode == TO_TERMINAL) {
        cli_printf("\n");
    } else if (mode == TO_SYSLOG) {
        CMPNT_SHOW(show_added_files, "\n");
    }
}

// The colon behind the name is the terminal's alone.
void show_bundle(uint32_t mode, const char *name) {
    if (mode == TO_TERMINAL) {
        cli_printf("\n      smu name: %s:\n", name);
    } else if (mode == TO_SYSLOG) {
        CMPNT_SHOW(show_added_files, "\n      smu name: %s\n", name);
    }
}

void show_file(uint32_t mode, const char *name) {
    if (mode == TO_TERMINAL) {
        cli_printf("          %s:\n", name);
    } else if (mode == TO_SYSLOG) {
        CMPNT_SHOW(show_added_files, "          %s:\n", name);
    }
}

bool is_self_or_parent(const char *name) {
    return strcmp(name, ".") == 0 || strcmp(name, "..") == 0;
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
            show_file(mode, entry->d_name);
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
    show_title(mode);
    const char *former = nullptr;
    for (const char *path : added_directories) {
        if (former != nullptr) {
            show_separator(mode);
        }
        show_directory(mode, path);
        cmpnt_traverse_all_add_file(path, mode);
        former = path;
    }
}
