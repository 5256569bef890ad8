// Whether a file system has room for a file.
#include "common/log.hh"

namespace {

constexpr int32_t in_kilobytes = 1;

}  // namespace

int32_t cmpnt_check_file_space_is_enough(const char *directory, const char *file,
                                         int32_t extra_kbytes) {
    if (directory == nullptr || file == nullptr) {
        CMPNT_LOG(log_server_error, "param is null.\n");
        return -1;
    }
    const uint32_t free_kbytes = cmpnt_get_available_kbytes(directory);
    if (free_kbytes == UINT32_MAX) {
        CMPNT_LOG(log_server_error, "cmpnt_get_available_kbytes fail.\n");
        return -1;
    }
    const uint32_t file_kbytes = cmpnt_get_file_size(file, in_kilobytes);
    if (file_kbytes == UINT32_MAX) {
        CMPNT_LOG(log_server_error, "cmpnt_get_file_size fail.\n");
        return -1;
    }
    // Signed: 2 TiB and more show as negative, as in every amount that these messages print.
    const int32_t available = static_cast<int32_t>(free_kbytes);
    const int32_t need = static_cast<int32_t>(file_kbytes + static_cast<uint32_t>(extra_kbytes));
    if (available < need) {
        CMPNT_LOG(log_server_error,
                  "data file space no enough, available kbyte(%d), need kbyte(%d).\n", available,
                  need);
        return -1;
    }
    CMPNT_LOG(log_server_trace, "data file space enough: available kbyte(%d), need kbyte(%d)\n",
              available, need);
    return 0;
}
