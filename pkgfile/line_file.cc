// A file that a line handler parses into a record: opened for update, so that a file that nobody may
// write is refused.
#include "pkgfile/line_file.hh"

#include <fcntl.h>
#include <string.h>

#include "common/guard.hh"
#include "common/log.hh"

namespace {

// As fopen with "r+", but a pipe that nobody fills keeps nothing waiting.
int open_to_update(const char *path) { return open(path, O_RDWR | O_NONBLOCK | O_CLOEXEC); }

// Handlers run deep, so neither buffer is on the stack beneath them. -1 without memory for them, the
// record as it was.
int32_t read_file(const char *caller, const LineFile &file, int fd, cmpnt_file_param *param) {
    char *line_buffer = static_cast<char *>(cmpnt_malloc(line_buffer_size));
    if (line_buffer == nullptr) {
        return -1;
    }
    LineBlock *block = static_cast<LineBlock *>(cmpnt_malloc(sizeof(LineBlock)));
    if (block == nullptr) {
        cmpnt_free_pointer(line_buffer);
        return -1;
    }
    memset(file.record, 0, file.zeroed);
    start_block(*block, fd);
    const int32_t result = read_lines({file.handler, file.record, param}, block, line_buffer);
    cmpnt_free_pointer(block);
    cmpnt_free_pointer(line_buffer);
    if (result != 0) {
        CMPNT_LOG_AS(log_error, caller, "parse_info_from_stream fail, maybe not error.\n");
        return -1;
    }
    return 0;
}

}  // namespace

int32_t parse_line_file(const char *caller, const LineFile &file, cmpnt_file_param *param) {
    if (file_is_exist(file.path) == 0) {
        CMPNT_LOG_AS(log_error, caller, "file(%s) is no exist.\n", file.path);
        return -1;
    }
    const Descriptor descriptor(open_to_update(file.path));
    if (!descriptor) {
        CMPNT_LOG_AS(log_error, caller, "Failed to fopen %s\n", file.path);
        return -1;
    }
    return read_file(caller, file, descriptor.get(), param);
}
