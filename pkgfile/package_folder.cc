// The package files of a directory. Whoever looks also cleans up: what is neither a package nor
// belongs beside one is deleted.
#include <string.h>
#include <sys/stat.h>

#include "common/directory_entry.hh"
#include "common/guard.hh"
#include "common/log.hh"

namespace {

constexpr char walker[] = "cmpnt_traverse_folder";  // whose steps these are

// A joined path that does not fit is one that cannot be examined: cut, it could be another file's,
// which would then be listed or deleted.
int32_t examine(const char *directory, const char *name, char (&path)[CMPNT_PATH_SIZE],
                struct stat *status) {
    const int length = snprintf(path, sizeof(path), "%s/%s", directory, name);
    if (length < 0 || static_cast<size_t>(length) >= sizeof(path)) {
        errno = ENAMETOOLONG;
        return -1;
    }
    return lstat(path, status);
}

int32_t add_package(const char *path, const struct stat &status, file_name_list *record) {
    record->total_size += static_cast<uint32_t>(status.st_size);
    if (cmpnt_malloc_and_memory(record->names, record->count, path,
                                static_cast<uint32_t>(strlen(path) + 1)) != 0) {
        CMPNT_LOG_AS(log_error, walker, "cmpnt_malloc_and_memory fail.\n");
        return -1;
    }
    record->count++;
    return 0;
}

int32_t take_file(const char *path, const struct stat &status, file_name_list *record) {
    uint32_t type = 0;  // a name without a suffix leaves it as it is
    if (cmpnt_file_type_check(path, &type) == 0) {
        return add_package(path, status, record);
    }
    if (type != CMPNT_PKG_TYPE_SIDE_FILE) {
        CMPNT_LOG_AS(log_trace, walker,
                     "file type(%d) not support, continue traverse, delete file(%s).\n",
                     static_cast<int32_t>(type), path);
        cmpnt_remove(path);
    }
    return 0;
}

int32_t take_entry(const char *directory, const char *name, file_name_list *record) {
    char path[CMPNT_PATH_SIZE];
    struct stat status;
    if (examine(directory, name, path, &status) != 0) {
        CMPNT_LOG_AS(log_error, walker, "lstat error, errno(%s)\n", strerror(errno));
        return -1;
    }
    if (S_ISDIR(status.st_mode)) {
        return 0;
    }
    if (record->count >= CMPNT_FILE_LIST_MAX) {
        CMPNT_LOG_AS(log_error, walker, "file num is too much.\n");
        return -1;
    }
    return take_file(path, status, record);
}

}  // namespace

int32_t cmpnt_traverse_folder(const char *path, file_name_list *record) {
    if (path == nullptr || record == nullptr) {
        CMPNT_LOG(log_error, "input param is error.\n");
        return -1;
    }
    const Directory directory(opendir(path));
    if (!directory) {
        CMPNT_LOG(log_error, "opendir path(%s) fail.\n", path);
        return -1;
    }
    while (const struct dirent *entry = readdir(directory.get())) {
        if (is_self_or_parent(entry->d_name)) {
            continue;
        }
        if (take_entry(path, entry->d_name, record) != 0) {
            cmpnt_free_file_name(record);
            return -1;
        }
    }
    return 0;
}

uint32_t dir_is_null(const char *path) {
    if (path == nullptr) {
        CMPNT_LOG(log_error, "param is null.\n");
        return CMPNT_DIR_NULL_PATH;
    }
    file_name_list record = {};
    if (cmpnt_traverse_folder(path, &record) != 0) {
        return CMPNT_DIR_FAILED;
    }
    cmpnt_free_file_name(&record);
    return record.count != 0 ? CMPNT_DIR_HAS_PACKAGE : CMPNT_DIR_NO_PACKAGE;
}
