// Removal of a file, a link or a whole directory. What cannot be deleted is logged and stays: the
// caller has got rid of what could go, and has no use for the rest.
#include <limits.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "common/directory_entry.hh"
#include "common/guard.hh"
#include "common/log.hh"

namespace {

constexpr char remover[] = "cmpnt_remove";  // whose steps these are
constexpr size_t child_path_size = 512;

int32_t remove_existing(const char *path);

bool is_there(const char *path) {
    return file_is_exist(path) != 0 || is_dir(path) != 0 || is_link(path) != 0;
}

// A child whose path does not fit is not tried: cut, the path could be another file's, or that of
// the directory itself, for ever.
int32_t remove_child(const char *directory, const char *name) {
    char path[child_path_size];
    const int length = snprintf(path, sizeof(path), "%s/%s", directory, name);
    if (length < 0 || static_cast<size_t>(length) >= sizeof(path)) {
        return -1;
    }
    return is_there(path) ? remove_existing(path) : 0;
}

int32_t remove_directory(const char *path) {
    Directory directory(opendir(path));
    if (!directory) {
        CMPNT_LOG_AS(log_error, remover, "opendir(%s) error, error(%s).\n", path, strerror(errno));
        return -1;
    }
    while (const struct dirent *entry = readdir(directory.get())) {
        if (is_self_or_parent(entry->d_name)) {
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

int32_t remove_existing(const char *path) {
    struct stat status;
    if (lstat(path, &status) != 0) {
        CMPNT_LOG_AS(log_error, remover, "lstat error, target(%s), errno(%s)\n", path,
                     strerror(errno));
        return -1;
    }
    if (S_ISDIR(status.st_mode)) {
        return remove_directory(path);
    }
    if (remove(path) != 0) {
        CMPNT_LOG_AS(log_error, remover, "remove error, target(%s), error(%s)\n", path,
                     strerror(errno));
    }
    return 0;
}

bool names_link(const char *path) {
    struct stat status;
    return lstat(path, &status) == 0 && S_ISLNK(status.st_mode);
}

size_t length_without_slashes(const char *path, size_t length) {
    while (length > 1 && path[length - 1] == '/') {
        length--;
    }
    return length;
}

// Cuts the slashes behind the path's name, and "/." too behind a link's: with them the link would be
// followed, and its target emptied.
void cut_behind_name(char *path) {
    const size_t length = length_without_slashes(path, strlen(path));
    path[length] = '\0';
    size_t name = length;
    while (name > 2 && path[name - 1] == '.' && path[name - 2] == '/') {
        name = length_without_slashes(path, name - 1);
    }
    if (name == length) {
        return;
    }
    path[name] = '\0';
    if (!names_link(path)) {
        path[name] = '/';
    }
}

}  // namespace

int32_t cmpnt_remove(const char *path) {
    if (path == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return -1;
    }
    char name[PATH_MAX];
    const size_t size = strlen(path) + 1;
    if (size > sizeof(name) || !is_there(path)) {
        return 0;  // nothing can have a longer path
    }
    memcpy(name, path, size);
    cut_behind_name(name);
    return remove_existing(name);
}
