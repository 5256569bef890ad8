// The trace file: one synced line a message, a file a thread name, one backup a file.
#include <errno.h>
#include <fcntl.h>
#include <pthread.h>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "common/guard.hh"
#include "common/log.hh"

namespace {

constexpr char trace_directory[] = "/var/cache/opkg/debug";
constexpr char daemon_name[] = "cmpnt_upgrade";
constexpr off_t rotation_size = 0x40000;
constexpr size_t line_size = CMPNT_LINE_SIZE;

// Error-checking, so that a thread that comes back while it writes a line is told so instead of
// waiting for itself: creating the trace directory logs its own failure.
pthread_mutex_t debug_mutex = PTHREAD_ERRORCHECK_MUTEX_INITIALIZER_NP;

// Put together by hand: this runs for every line, and printf would be its largest cost.
template <size_t size>
struct Text {
    char bytes[size];
    size_t length;
};

using TraceLine = Text<line_size>;

template <size_t size>
void append_bytes(Text<size> &text, const char *bytes, size_t length) {
    const size_t room = size - 1 - text.length;
    const size_t fitting = length < room ? length : room;
    memcpy(text.bytes + text.length, bytes, fitting);
    text.length += fitting;
    text.bytes[text.length] = '\0';
}

template <size_t size>
void append_text(Text<size> &text, const char *more) {
    const char *shown = more == nullptr ? "(null)" : more;
    append_bytes(text, shown, strlen(shown));
}

void append_number(TraceLine &line, int32_t number) {
    char digits[12];
    char *start = digits + sizeof(digits) - 1;
    *start = '\0';
    const bool negative = number < 0;
    uint32_t rest = negative ? 0u - static_cast<uint32_t>(number) : static_cast<uint32_t>(number);
    do {
        *--start = static_cast<char>('0' + rest % 10);
        rest /= 10;
    } while (rest != 0);
    if (negative) {
        *--start = '-';
    }
    append_text(line, start);
}

// Most messages are made of texts and numbers; from the first other conversion on printf takes over.
void append_message(TraceLine &line, const char *format, va_list arguments) {
    for (;;) {
        const char *conversion = strchrnul(format, '%');
        append_bytes(line, format, static_cast<size_t>(conversion - format));
        format = conversion;
        if (strncmp(conversion, "%s", 2) == 0) {
            append_text(line, va_arg(arguments, const char *));
        } else if (strncmp(conversion, "%d", 2) == 0) {
            append_number(line, va_arg(arguments, int));
        } else {
            break;
        }
        format += 2;
    }
    if (*format != '\0') {
        vsnprintf(line.bytes + line.length, line_size - line.length, format, arguments);
        line.length += strlen(line.bytes + line.length);
    }
}

// "[%s, %s, %s-%d]" with the time, the kind, the function and its line, then the message, cut to the
// line.
void format_line(TraceLine &line, const char *kind, const char *function, int32_t number,
                 const char *format, va_list arguments) {
    const int caller_errno = errno;
    line.bytes[0] = '[';
    line.bytes[1] = '\0';
    cmppnt_get_time(line.bytes + 1, line_size - 1, 1);
    line.length = strlen(line.bytes);
    append_text(line, ", ");
    append_text(line, kind);
    append_text(line, ", ");
    append_text(line, function);
    append_text(line, "-");
    append_number(line, number);
    append_text(line, "]");
    errno = caller_errno;  // for %m: the platform's clock may have changed it
    append_message(line, format, arguments);
}

int create_trace_file(const char *path) {
    cmpnt_mkdir(trace_directory);
    return open(path, O_RDWR | O_CREAT | O_TRUNC | O_NONBLOCK | O_CLOEXEC, 0755);
}

// Opens before it looks: an existing, short file is the common case and needs no other call by name.
// Nothing here waits, for all threads log under the one lock: a pipe without a reader is refused.
int open_trace_file(const char *path) {
    Descriptor file(open(path, O_WRONLY | O_APPEND | O_NONBLOCK | O_CLOEXEC));
    struct stat status;
    const bool known = file ? fstat(file.get(), &status) == 0 : stat(path, &status) == 0;
    if (known && status.st_size >= rotation_size) {
        return cmpnt_log_file_backup(path) == 0 ? create_trace_file(path) : -1;
    }
    if (file) {
        return file.release();
    }
    if (lstat(path, &status) == 0) {
        return -1;  // there, but not to be opened
    }
    return create_trace_file(path);
}

// Into the file "%s/.%s.log": the directory, and the name of the calling thread.
void append_to_trace_file(const TraceLine &line) {
    char name[16] = {};  // what the kernel has room for
    prctl(PR_GET_NAME, name);
    Text<128> path;
    path.length = 0;
    append_text(path, trace_directory);
    append_text(path, "/.");
    append_text(path, name);
    append_text(path, ".log");
    const int trace_fd = open_trace_file(path.bytes);
    if (trace_fd < 0) {
        return;
    }
    if (write(trace_fd, line.bytes, line.length) < 0) {
        // A line that cannot be written is lost; there is nowhere to say so.
    }
    fsync(trace_fd);
    close(trace_fd);
}

}  // namespace

int32_t cmpnt_write_debug_log(const char *kind, const char *function, int32_t line,
                              const char *format, ...) {
    const int saved_errno = errno;
    int cancel_state = 0;
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &cancel_state);
    int32_t result = 0;
    if (format != nullptr && pthread_mutex_lock(&debug_mutex) == 0) {
        TraceLine trace_line;
        va_list arguments;
        va_start(arguments, format);
        format_line(trace_line, kind, function, line, format, arguments);
        va_end(arguments);
        append_to_trace_file(trace_line);
        result = pthread_mutex_unlock(&debug_mutex);
    }
    pthread_setcancelstate(cancel_state, nullptr);
    errno = saved_errno;
    return result;
}

// Part of the writer, so it logs nothing.
int32_t cmpnt_log_file_backup(const char *path) {
    char backup[256];
    if (path == nullptr) {
        return -1;
    }
    const int length = snprintf(backup, sizeof(backup), "%s%s", path, "_bak");
    if (length < 0 || static_cast<size_t>(length) >= sizeof(backup)) {
        return -1;
    }
    return rename(path, backup) == 0 ? 0 : -1;
}

int32_t cmpnt_debug_delete_log_file(void) {
    char pattern[128];
    snprintf(pattern, sizeof(pattern), "%s/.%s*", trace_directory, daemon_name);
    cmpnt_system_cmd_run("rm -rf", pattern);
    CMPNT_LOG(log_server_trace, "delete all log file %s.\n", pattern);
    return 0;
}
