// The size of a file.
#include <errno.h>
#include <stdio.h>
#include <string.h>

#include "common/guard.hh"
#include "common/log.hh"
#include "common/open_stream.hh"

namespace {

constexpr uint32_t unknown_size = UINT32_MAX;
enum { IN_KILOBYTES = 1 };

}  // namespace

uint32_t cmpnt_get_file_size(const char *path, int32_t unit) {
    // A missing file is reported as a missing argument: what callers watch for.
    if (path == nullptr || file_is_exist(path) == 0) {
        CMPNT_LOG(log_server_error, "param is null.\n");
        return unknown_size;
    }
    Stream file(open_to_read(path));
    if (!file) {
        CMPNT_LOG(log_server_error, "fopen fail, error(%s).\n", strerror(errno));
        return unknown_size;
    }
    const off_t size = fseeko(file.get(), 0, SEEK_END) == 0 ? ftello(file.get()) : -1;
    if (size < 0) {
        return unknown_size;
    }
    return static_cast<uint32_t>(unit == IN_KILOBYTES ? size >> 10 : size);
}
