// Room on a file system, in kilobytes: unsigned 32-bit when measured, signed when compared.
#include <sys/statvfs.h>

#include "common/log.hh"

namespace {

constexpr uint32_t kilobyte = 1024;

}  // namespace

uint32_t cmpnt_get_available_kbytes(const char *path) {
    if (path == nullptr) {
        CMPNT_LOG(log_error, "param is null.\n");
        return UINT32_MAX;
    }
    cmpnt_sync();
    struct statvfs space;
    if (statvfs(path, &space) != 0) {
        CMPNT_LOG(log_error, "Failed to statvfs for %s", path);
        return UINT32_MAX;
    }
    const uint32_t block_size = static_cast<uint32_t>(space.f_frsize);
    const uint32_t blocks = static_cast<uint32_t>(space.f_bavail);
    CMPNT_LOG(log_trace, "frsize = %lu, f_bavail = %lu\n", static_cast<unsigned long>(block_size),
              static_cast<unsigned long>(blocks));
    if (block_size >= kilobyte) {
        return blocks * (block_size / kilobyte);
    }
    if (block_size > 0) {
        return blocks / (kilobyte / block_size);
    }
    CMPNT_LOG(log_error, "Unknown block size for target filesystem.\n");
    return 0;
}

int32_t cmpnt_check_reserve_space_is_enough(const char *path, int32_t need_kbytes) {
    if (path == nullptr) {
        CMPNT_LOG(log_error, "param is null.\n");
        return -1;
    }
    const uint32_t free_kbytes = cmpnt_get_available_kbytes(path);
    if (free_kbytes == UINT32_MAX) {
        CMPNT_LOG(log_error, "cmpnt_get_available_kbytes fail.\n");
        return -1;
    }
    const int32_t available = static_cast<int32_t>(free_kbytes);
    if (available < need_kbytes) {
        CMPNT_LOG(log_error, "space no enough, type(%s), available kbyte(%d), need kbyte(%d).\n",
                  path, available, need_kbytes);
        return -1;
    }
    CMPNT_LOG(log_trace, "space enough: type(%s), available kbyte(%d), need kbyte(%d)\n", path,
              available, need_kbytes);
    return 0;
}
