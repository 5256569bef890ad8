// The temporary directory, and paths in it.
#include "common/temp_path.hh"

#include <stdlib.h>
#include <string.h>

#include "common/log.hh"

namespace {

constexpr char default_directory[] = "/tmp";

}  // namespace

char *cmpnt_get_tmpdir(char *dest, int32_t size) {
    if (dest == nullptr) {
        return nullptr;
    }
    const char *directory = getenv("TMPDIR");
    if (directory == nullptr) {
        directory = default_directory;
    }
    const size_t length = strlen(directory);
    if (size < 1 || length >= static_cast<size_t>(size)) {
        CMPNT_LOG(log_error, "path(%s) length >= %d!\n", directory, size);
        return nullptr;
    }
    memset(dest, 0, static_cast<size_t>(size));
    memcpy(dest, directory, length);
    return dest;
}

TempPath join_temp_path(const char *name, char *dest, int32_t size) {
    if (cmpnt_get_tmpdir(dest, size) == nullptr) {
        return TempPath::no_directory;
    }
    const size_t directory_length = strlen(dest);
    const size_t name_length = strlen(name);
    if (name_length >= static_cast<size_t>(size) - directory_length) {
        return TempPath::too_long;
    }
    memcpy(dest + directory_length, name, name_length + 1);
    return TempPath::made;
}

int32_t cmpnt_get_tmp_strcat_path(const char *name, char *dest, int32_t size) {
    if (name == nullptr || dest == nullptr) {
        CMPNT_LOG(log_error, "param is null.\n");
        return -1;
    }
    switch (join_temp_path(name, dest, size)) {
        case TempPath::made:
            return 0;
        case TempPath::no_directory:
            CMPNT_LOG(log_error, "cmpnt_get_tmpdir fail.\n");
            return -1;
        default:
            CMPNT_LOG(log_error, "path(%s) and file(%s) len >= %d\n", dest, name, size);
            return -1;
    }
}

bool make_temp_path(const char *function, TempFile kind, const char *name,
                    char (&path)[CMPNT_PATH_SIZE]) {
    if (name == nullptr) {
        CMPNT_LOG_AS(log_error, function, "param is null.\n");
        return false;
    }
    switch (join_temp_path(name, path, CMPNT_PATH_SIZE)) {
        case TempPath::made:
            return true;
        case TempPath::no_directory:
            CMPNT_LOG_AS(log_error, function, "cmpnt_get_tmpdir fail.\n");
            return false;
        default:
            break;
    }
    if (kind == TempFile::lock) {
        CMPNT_LOG_AS(log_error, function, "path(%s) and lock(%s) len >= %d\n", path, name,
                     CMPNT_PATH_SIZE);
    } else {
        CMPNT_LOG_AS(log_error, function, "path(%s) and file(%s) len >= %d\n", path, name,
                     CMPNT_PATH_SIZE);
    }
    return false;
}
