// Whether a downloaded SMU is unpacked.
#include <stdio.h>

#include "common/log.hh"

namespace {

constexpr char download_directory[] = "/data/cmpnt/opkg/download";

}  // namespace

// A destination that does not fit is cut to the length at which the path of no file in it fits: what
// another directory of that name holds is neither found nor deleted.
int32_t smu_dir_path_is_null(const char *name) {
    if (name == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return 1;
    }
    char path[CMPNT_PATH_SIZE];
    snprintf(path, sizeof(path), "%s/%s", download_directory, name);
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
    return is_dir(destination) != 0 && dir_is_null(destination) == CMPNT_DIR_HAS_PACKAGE ? 0 : 1;
}
