// A file that a line handler parses into a record: opened for update, so that a file that nobody may
// write is refused.
#include "pkgfile/line_file.hh"

#include <string.h>

#include "common/guard.hh"
#include "common/log.hh"
#include "common/open_stream.hh"

int32_t parse_line_file(const char *caller, const LineFile &file, cmpnt_file_param *param) {
    if (file_is_exist(file.path) == 0) {
        CMPNT_LOG_AS(log_error, caller, "file(%s) is no exist.\n", file.path);
        return -1;
    }
    const Stream stream(open_to_update(file.path));
    if (!stream) {
        CMPNT_LOG_AS(log_error, caller, "Failed to fopen %s\n", file.path);
        return -1;
    }
    char *line_buffer = static_cast<char *>(cmpnt_malloc(line_buffer_size));
    if (line_buffer == nullptr) {
        return -1;
    }
    memset(file.record, 0, file.zeroed);
    LineBlock block(fileno(stream.get()));
    const int32_t result =
        read_lines({file.handler, file.record, param}, stream.get(), &block, line_buffer);
    cmpnt_free_pointer(line_buffer);
    if (result != 0) {
        CMPNT_LOG_AS(log_error, caller, "parse_info_from_stream fail, maybe not error.\n");
        return -1;
    }
    return 0;
}
