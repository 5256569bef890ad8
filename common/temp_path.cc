// The temporary directory, and paths in it.
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

// Names bring their leading slash: no separator stands between.
int32_t cmpnt_get_tmp_strcat_path(const char *name, char *dest, int32_t size) {
    if (name == nullptr || dest == nullptr) {
        CMPNT_LOG(log_error, "param is null.\n");
        return -1;
    }
    if (cmpnt_get_tmpdir(dest, size) == nullptr) {
        CMPNT_LOG(log_error, "cmpnt_get_tmpdir fail.\n");
        return -1;
    }
    const size_t directory_length = strlen(dest);
    const size_t name_length = strlen(name);
    if (directory_length + name_length >= static_cast<size_t>(size)) {
        CMPNT_LOG(log_error, "path(%s) and file(%s) len >= %d\n", dest, name, size);
        return -1;
    }
    memcpy(dest + directory_length, name, name_length + 1);
    return 0;
}
