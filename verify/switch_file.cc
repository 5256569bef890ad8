// The file that switches verification on.
#include <errno.h>
#include <fcntl.h>
#include <string.h>

#include "common/log.hh"
#include "verify/verify_paths.hh"

int32_t cmpnt_enable_safe_verify(void) {
    const int fd = open(switch_file_path, O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0755);
    if (fd < 0) {
        CMPNT_LOG(log_error, "open file(%s) fail, error(%s).\n", switch_file_path, strerror(errno));
        return -1;
    }
    cmpnt_close(fd);
    return 0;
}
