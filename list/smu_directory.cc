// Whether a downloaded SMU is unpacked.
#include <stdio.h>
#include <string.h>

#include "common/log.hh"
#include "list/dest_path.hh"

namespace {

constexpr char download_directory[] = "/data/cmpnt/opkg/download";

}  // namespace

// A destination that does not fit is not looked at: cut, it could be another directory, and looking
// deletes that one's stray files.
int32_t smu_dir_path_is_null(const char *name) {
    if (name == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return 1;
    }
    char path[CMPNT_PATH_SIZE];
    const int length = snprintf(path, sizeof(path), "%s/%s", download_directory, name);
    uint32_t type = 0;
    if (cmpnt_file_type_check(name, &type) != 0) {
        CMPNT_LOG(log_error, "Invalid package type, please check!\n");
        return 1;
    }
    char destination[CMPNT_PATH_SIZE];
    if (cmpnt_get_dest_path(path, destination, type) != 0) {
        CMPNT_LOG(log_error, "cmpnt_get_dest_path fail, path(%s), type(%d).\n", path,
                  static_cast<int>(type));
        return 1;
    }
    if (length < 0 ||
        static_cast<size_t>(length) + strlen(dest_suffix(type)) >= sizeof(destination)) {
        return 1;
    }
    return is_dir(destination) != 0 && dir_is_null(destination) == CMPNT_DIR_HAS_PACKAGE ? 0 : 1;
}
