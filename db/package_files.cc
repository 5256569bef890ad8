// Removes the files of a package by the path of one of them. What goes is told by the directory's
// name: from the download area the file alone, of an unpacked upgrade the whole directory.
#include <stdio.h>
#include <string.h>

#include "common/log.hh"
#include "db/last_component.hh"

namespace {

constexpr char temporary_prefix[] = "_temp_";
constexpr char temporary_suffix[] = "__";
constexpr const char *upgrade_marks[] = {".single", ".multiple", ".new"};

bool is_upgrade_directory(const char *name) {
    for (const char *mark : upgrade_marks) {
        if (strstr(name, mark) != nullptr) {
            return true;
        }
    }
    return false;
}

}  // namespace

int32_t cmpnt_delete_pkg_by_path(const char *path) {
    if (path == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return -1;
    }
    // A path that was cut would name another directory, and that one would go.
    char directory[CMPNT_PATH_SIZE];
    if (strlen(path) >= sizeof(directory)) {
        return -1;
    }
    directory_of(path, directory);
    CMPNT_LOG(log_client_trace, "delete ready: get path(%s)\n", directory);
    const char *directory_name = last_component(directory);
    if (strstr(directory_name, "download") != nullptr) {
        CMPNT_LOG(log_client_trace, "delete ready: file(%s)\n", path);
        int32_t result = cmpnt_remove(path);
        char temporary[CMPNT_PATH_SIZE];
        const int length = snprintf(temporary, sizeof(temporary), "%s/%s%s%s", directory,
                                    temporary_prefix, last_component(path), temporary_suffix);
        CMPNT_LOG(log_client_trace, "delete ready: tftp tmp file(%s)\n", temporary);
        if (length < static_cast<int>(sizeof(temporary))) {
            result = cmpnt_remove(temporary);
        }
        return result;
    }
    if (is_upgrade_directory(directory_name)) {
        CMPNT_LOG(log_client_trace, "delete ready: path(%s)\n", directory);
        return cmpnt_remove(directory);
    }
    return 0;
}
