// The kind of a package file, by the suffix of its name.
#include <limits.h>
#include <string.h>

#include "common/log.hh"

namespace {

int32_t length_of(const char *text) {
    const size_t length = strlen(text);
    return length > INT32_MAX ? INT32_MAX : static_cast<int32_t>(length);
}

uint32_t type_of_suffix(const char *suffix) {
    if (strcmp(suffix, ".bin") == 0) {
        return CMPNT_PKG_TYPE_IMAGE;
    }
    if (strcmp(suffix, ".deb") == 0) {
        return CMPNT_PKG_TYPE_DEB;
    }
    if (strcmp(suffix, ".sign") == 0 || strcmp(suffix, ".hash") == 0) {
        return CMPNT_PKG_TYPE_SIDE_FILE;
    }
    return CMPNT_PKG_TYPE_UNSUPPORTED;
}

}  // namespace

int32_t str_is_empty(const char *text) { return text[0] == '\0' ? 1 : 0; }

int32_t get_file_type(const char *file_name, char *suffix, int32_t size) {
    if (file_name == nullptr || suffix == nullptr) {
        CMPNT_LOG(log_error, "input param is error.\n");
        return -1;
    }
    const char *dot = strrchr(file_name, '.');
    if (dot == nullptr) {
        CMPNT_LOG(log_error, "The file_name(%s) type is invalid.\n", file_name);
        return -1;
    }
    if (str_is_empty(dot + 1) != 0) {
        CMPNT_LOG(log_error, "the type(%s) is NULL, please input correct filename type\n", dot);
        return -1;
    }
    if (cmpnt_memcpy(suffix, dot, size, length_of(dot)) != 0) {
        CMPNT_LOG(log_error, "cmpnt_memcpy fail, str(%s)\n", dot);
        return -1;
    }
    return 0;
}

int32_t cmpnt_file_type_check(const char *file_name, uint32_t *type) {
    if (file_name == nullptr || type == nullptr) {
        CMPNT_LOG(log_error, "input param is error.\n");
        return -1;
    }
    char suffix[CMPNT_PATH_SIZE] = {};
    if (get_file_type(file_name, suffix, sizeof(suffix)) != 0) {
        CMPNT_LOG(log_error, "get_file_type fail, path_name(%s), type(%s).\n", file_name, suffix);
        return -1;
    }
    *type = type_of_suffix(suffix);
    if (*type == CMPNT_PKG_TYPE_UNSUPPORTED) {
        CMPNT_LOG(log_error, "file_name(%s), type(%s) is not support!\n", file_name, suffix);
    }
    return *type == CMPNT_PKG_TYPE_IMAGE || *type == CMPNT_PKG_TYPE_DEB ? 0 : -1;
}
