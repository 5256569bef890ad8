// Where package files are unpacked to.
#include <stdio.h>
#include <string.h>

#include "common/log.hh"

namespace {

const char *dest_suffix(uint32_t type) {
    switch (type) {
        case CMPNT_PKG_TYPE_IMAGE:
            return ".single";
        case CMPNT_PKG_TYPE_MULTIPLE:
            return ".multiple";
        case CMPNT_PKG_TYPE_DEB:
            return ".new";
        default:
            return nullptr;
    }
}

}  // namespace

// The path is made apart, so that base may lie in dst.
int32_t cmpnt_get_dest_path(const char *base, char *dst, uint32_t type) {
    if (base == nullptr || dst == nullptr) {
        CMPNT_LOG(log_error, "input param is error.\n");
        return -1;
    }
    char path[CMPNT_PATH_SIZE] = {};
    const char *suffix = dest_suffix(type);
    if (suffix != nullptr) {
        snprintf(path, sizeof(path), "%s%s", base, suffix);
    }
    memcpy(dst, path, sizeof(path));
    return suffix != nullptr ? 0 : -1;
}
