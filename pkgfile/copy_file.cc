// A copy block by block, on the disk when the call returns.
#include <string.h>
#include <sys/stat.h>

#include "common/guard.hh"
#include "common/log.hh"
#include "common/open_stream.hh"

namespace {

constexpr size_t block_size = 1024;
constexpr mode_t copy_mode = 0777;  // whatever the umask

// The size of the last block, 0 when there was none. A block that is not written whole is a full
// disk: -1.
int32_t copy_blocks(FILE *from, FILE *to) {
    char block[block_size];
    int32_t last = 0;
    size_t size = 0;
    while ((size = fread(block, 1, sizeof(block), from)) > 0) {
        if (fwrite(block, 1, size, to) != size) {
            return -1;
        }
        last = static_cast<int32_t>(size);
    }
    return last;
}

}  // namespace

int32_t cmpnt_copy_file_by_write(const char *source, const char *destination) {
    if (source == nullptr || destination == nullptr) {
        CMPNT_LOG(log_error, "path is null.\n");
        return -1;
    }
    if (file_is_exist(source) == 0) {
        CMPNT_LOG(log_error, "file(%s) is no exist.\n", source);
        return -1;
    }
    Stream from(open_to_read(source));
    if (!from) {
        CMPNT_LOG(log_error, "fopen fail, src(%s), error(%s)\n", source, strerror(errno));
        return -1;
    }
    Stream to(fopen(destination, "w+e"));
    if (!to) {
        CMPNT_LOG(log_error, "fopen fail, dest(%s), error(%s)\n", destination, strerror(errno));
        return -1;
    }
    const int32_t last = copy_blocks(from.get(), to.get());
    // A disk may turn out full only now.
    if (last == -1 || fflush(to.get()) != 0) {
        CMPNT_LOG(log_error, "fwrite fail, error(%s)\n", strerror(errno));
        return -1;
    }
    cmpnt_fsync(fileno(to.get()));
    if (chmod(destination, copy_mode) != 0) {
        CMPNT_LOG(log_error, "chmod fail, error(%s)\n", strerror(errno));
        return -1;
    }
    return last;
}
