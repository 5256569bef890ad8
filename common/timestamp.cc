// The wall-clock time as text, for trace lines and records.
#include <stdio.h>
#include <string.h>
#include <sys/time.h>
#include <time.h>

#include "libcmpnt_db.h"
#include "platform/platform.h"

namespace {

constexpr int32_t wall_clock = 2;
enum { TO_THE_SECOND = 0, TO_THE_MICROSECOND = 1 };

// The formats are "%04d-%02d-%02d %02d:%02d:%02d" and "%04d-%02d-%02d %02d:%02d:%02d-%06ld". Digits by
// hand: this runs for every trace line, and printf would be its largest cost.
char *put_number(char *out, int value, int width) {
    for (int i = width - 1; i >= 0; i--) {
        out[i] = static_cast<char>('0' + value % 10);
        value /= 10;
    }
    return out + width;
}

char *put_date(char *out, const struct tm &when) {
    const int year = when.tm_year + 1900;
    if (year < 0 || year > 9999) {
        out += sprintf(out, "%04d", year);
    } else {
        out = put_number(out, year, 4);
    }
    *out++ = '-';
    out = put_number(out, when.tm_mon + 1, 2);
    *out++ = '-';
    return put_number(out, when.tm_mday, 2);
}

char *put_time_of_day(char *out, const struct tm &when) {
    out = put_number(out, when.tm_hour, 2);
    *out++ = ':';
    out = put_number(out, when.tm_min, 2);
    *out++ = ':';
    return put_number(out, when.tm_sec, 2);
}

}  // namespace

// The caller may hold the trace lock, so nothing here logs.
void cmppnt_get_time(char *dst, int32_t size, int32_t mode) {
    if (dst == nullptr || size < 1 || (mode != TO_THE_SECOND && mode != TO_THE_MICROSECOND)) {
        return;
    }
    const time_t now = vx_time_get(wall_clock);
    struct tm when;
    if (now < 0 || localtime_r(&now, &when) == nullptr) {
        return;
    }
    char text[48];
    char *end = put_date(text, when);
    *end++ = ' ';
    end = put_time_of_day(end, when);
    if (mode == TO_THE_MICROSECOND) {
        struct timeval precise = {};
        gettimeofday(&precise, nullptr);
        *end++ = '-';
        end = put_number(end, static_cast<int>(precise.tv_usec), 6);
    }
    size_t length = static_cast<size_t>(end - text);
    if (length > static_cast<size_t>(size) - 1) {
        length = static_cast<size_t>(size) - 1;
    }
    memcpy(dst, text, length);
    dst[length] = '\0';
}
