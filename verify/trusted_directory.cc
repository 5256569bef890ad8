// Whether a file is one that the device trusts at start-up.
#include "verify/trusted_directory.hh"

#include <string.h>

#include "common/log.hh"

// A plain prefix: "/binx" is trusted with "/bin", as the start-up check has it.
int32_t cmpnt_is_safe_verify_dir(const char *path) {
    if (path == nullptr) {
        CMPNT_LOG(log_error, "param is null.\n");
        return 0;
    }
    for (const char *directory : trusted_directories) {
        if (strncmp(path, directory, strlen(directory)) == 0) {
            return 1;
        }
    }
    return 0;
}
