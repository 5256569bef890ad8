// Copies and prints into fixed buffers that tell when the text did not fit.
#include <stdarg.h>
#include <stdio.h>
#include <string.h>

#include "common/log.hh"

int32_t cmpnt_memcpy(void *dest, const void *src, int32_t dest_len, int32_t src_len) {
    if (dest == nullptr || src == nullptr || src_len < 1 || dest_len < 1) {
        CMPNT_LOG(log_error, "param is invalid.\n");
        return -1;
    }
    const char *text = static_cast<const char *>(src);
    const size_t room = static_cast<size_t>(dest_len);
    const size_t wanted = static_cast<size_t>(src_len);
    // A refused text costs the former one as well: nobody goes on with a stale name.
    memset(dest, 0, room);
    // Looks no further than it must; only a refused text is printed, and read to its end.
    const bool fills_dest = strnlen(text, room + 1) == room;
    if (wanted > room || (fills_dest && wanted < room)) {
        CMPNT_LOG(log_error, "src(%s) is too long, src_len(%d), dest(%d).\n", text, src_len,
                  dest_len);
        return -1;
    }
    if (fills_dest) {
        CMPNT_LOG(log_error, "src(%s) is too long, src_len(%d).\n", text, src_len);
        memcpy(dest, src, wanted - 1);
        return 0;
    }
    memcpy(dest, src, wanted);
    return 0;
}

int32_t cmpnt_snprintf(char *dest, int32_t size, const char *format, ...) {
    if (dest == nullptr || format == nullptr) {
        return -1;
    }
    int written = -1;
    if (size >= 1) {
        va_list arguments;
        va_start(arguments, format);
        written = vsnprintf(dest, static_cast<size_t>(size), format, arguments);
        va_end(arguments);
    }
    if (written < 0 || written >= size) {
        CMPNT_LOG(log_error, "truncate occured\n");
        return -1;
    }
    return 0;
}
