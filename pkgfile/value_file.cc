// A small file whose first line is a value.
#include <errno.h>
#include <string.h>

#include "common/guard.hh"
#include "common/log.hh"
#include "common/open_stream.hh"

int32_t cmpnt_get_value_from_file(char *value, int32_t size, const char *path) {
    if (value == nullptr || path == nullptr || size < 1) {
        CMPNT_LOG(log_error, "param is error, len(%d).\n", size);
        return -1;
    }
    memset(value, 0, static_cast<size_t>(size));
    if (file_is_exist(path) == 0) {
        CMPNT_LOG(log_error, "serial file(%s) is not exist\n", path);
        return -1;
    }
    const Stream file(open_to_read(path));
    if (!file) {
        CMPNT_LOG(log_error, "fopen fail, error(%s)\n", strerror(errno));
        return -1;
    }
    if (fgets(value, size, file.get()) == nullptr || value[0] == '\0') {
        CMPNT_LOG(log_error, "buf len is 0.\n");
        return -1;
    }
    const int32_t length = static_cast<int32_t>(strlen(value));  // with the newline
    value[strcspn(value, "\n")] = '\0';
    CMPNT_LOG(log_trace, "get file buf(%s), len(%d)\n", value, length);
    return 0;
}
