// Removal of a file, a link or a whole directory. What cannot be deleted is logged and stays: the
// caller has got rid of what could go, and has no use for the rest.
#include <limits.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "common/guard.hh"
#include "common/log.hh"

namespace {

constexpr char remover[] = "cmpnt_remove";  // whose steps these are
constexpr size_t child_path_size = 512;

// A child whose path does not fit is not tried: cut, the path could be another file's, or that of
// the directory itself, for ever.
int32_t remove_child(const char *directory, const char *name) {
    char path[child_path_size];
    const int length = snprintf(path, sizeof(path), "%s/%s", directory, name);
    if (length < 0 || static_cast<size_t>(length) >= sizeof(path)) {
        return -1;
    }
    return cmpnt_remove(path);
}

int32_t remove_directory(const char *path) {
    Directory directory(opendir(path));
    if (!directory) {
        CMPNT_LOG_AS(log_error, remover, "opendir(%s) error, error(%s).\n", path, strerror(errno));
        return -1;
    }
    while (const struct dirent *entry = readdir(directory.get())) {
        if (strcmp(entry->d_name, ".") == 0 || strcmp(entry->d_name, "..") == 0) {
            continue;
        }
        if (remove_child(path, entry->d_name) != 0) {
            CMPNT_LOG_AS(log_error, remover, "cmpnt_remove error.\n");
        }
    }
    if (closedir(directory.release()) != 0) {
        CMPNT_LOG_AS(log_error, remover, "closedir error, error(%s).\n", strerror(errno));
    }
    if (rmdir(path) != 0) {
        CMPNT_LOG_AS(log_error, remover, "rmdir error, target(%s), error(%s)\n", path,
                     strerror(errno));
    }
    return 0;
}

bool has_trailing_slash(const char *path) {
    const size_t length = strlen(path);
    return length > 1 && path[length - 1] == '/';
}

// With a slash behind its name a link would be followed, and its target emptied.
int32_t remove_without_trailing_slashes(const char *path) {
    char stripped[PATH_MAX];
    size_t length = strlen(path);
    if (length >= sizeof(stripped)) {
        return 0;  // nothing can have such a path
    }
    while (length > 1 && path[length - 1] == '/') {
        length--;
    }
    memcpy(stripped, path, length);
    stripped[length] = '\0';
    return cmpnt_remove(stripped);
}

}  // namespace

int32_t cmpnt_remove(const char *path) {
    if (path == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return -1;
    }
    if (has_trailing_slash(path)) {
        return remove_without_trailing_slashes(path);
    }
    if (file_is_exist(path) == 0 && is_dir(path) == 0 && is_link(path) == 0) {
        return 0;
    }
    struct stat status;
    if (lstat(path, &status) != 0) {
        CMPNT_LOG(log_error, "lstat error, target(%s), errno(%s)\n", path, strerror(errno));
        return -1;
    }
    if (S_ISDIR(status.st_mode)) {
        return remove_directory(path);
    }
    if (remove(path) != 0) {
        CMPNT_LOG(log_error, "remove error, target(%s), error(%s)\n", path, strerror(errno));
    }
    return 0;
}
