// The operator's session and the system log, as streams.
#include <errno.h>
#include <stdarg.h>

#include "platform/reference/reference_platform.h"

namespace {

FILE *terminal = nullptr;
FILE *system_log = nullptr;

FILE *stream_or(FILE *chosen, FILE *standard) { return chosen != nullptr ? chosen : standard; }

int32_t print_log_line(const char *tag, const char *module, const char *format, va_list arguments) {
    FILE *stream = stream_or(system_log, stderr);
    const int saved_errno = errno;
    fprintf(stream, "%s/%s: ", tag, module);
    errno = saved_errno;
    return vfprintf(stream, format, arguments) < 0 ? -1 : 0;
}

}  // namespace

void reference_platform_set_terminal(FILE *stream) { terminal = stream; }

void reference_platform_set_system_log(FILE *stream) { system_log = stream; }

int32_t cli_printf(const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int32_t result = vfprintf(stream_or(terminal, stdout), format, arguments);
    va_end(arguments);
    return result;
}

int32_t printk_syslog_lc(int32_t, const char *tag, const char *module, const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int32_t result = print_log_line(tag, module, format, arguments);
    va_end(arguments);
    return result;
}

int32_t printk_syslog_ext(int32_t, const char *tag, const char *module, int32_t, const char *format,
                          ...) {
    va_list arguments;
    va_start(arguments, format);
    const int32_t result = print_log_line(tag, module, format, arguments);
    va_end(arguments);
    return result;
}
