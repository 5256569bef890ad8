// Verifying a package before it is installed: what is checked depends on its suffix.
#include <string.h>

#include "common/log.hh"
#include "verify/base_package.hh"
#include "verify/patch_package.hh"

int32_t cmpnt_safe_verify(const char *path, uintptr_t second, uintptr_t third, uintptr_t fourth) {
    if (path == nullptr) {
        CMPNT_LOG(log_error, "param is null.\n");
        return -1;
    }
    if (cmpnt_safe_verify_enable(reinterpret_cast<uintptr_t>(path), second, third, fourth) == 0) {
        return 0;
    }
    char suffix[CMPNT_PATH_SIZE] = {};
    if (get_file_type(path, suffix, sizeof(suffix)) != 0) {
        CMPNT_LOG(log_error, "get_file_type fail, file_name(%s).\n", path);
        return -1;
    }
    CMPNT_LOG(log_trace, "cmpnt_safe_verify path(%s)\n", path);
    if (strcmp(suffix, ".ipk") == 0) {
        return verify_base_package(path);
    }
    if (strcmp(suffix, ".deb") == 0) {
        return verify_patch_package(path);
    }
    return 0;
}
