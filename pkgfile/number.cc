// Numbers as the device reads them, whatever the width of long.
#include "pkgfile/number.hh"

#include <stdlib.h>

#include "pkgfile/field.hh"

namespace {

uint32_t digit_of(char c) {
    if (c >= '0' && c <= '9') {
        return static_cast<uint32_t>(c - '0');
    }
    const char letter = lower_case(c);
    return letter >= 'a' && letter <= 'f' ? static_cast<uint32_t>(letter - 'a' + 10) : UINT32_MAX;
}

}  // namespace

int32_t decimal_number(const char *text, char **end) {
    const long long number = strtoll(text, end, 10);
    if (number > INT32_MAX) {
        return INT32_MAX;
    }
    return number < INT32_MIN ? INT32_MIN : static_cast<int32_t>(number);
}

// Not strtoull: newer C libraries know more prefixes.
uint32_t prefixed_number(const char *text) {
    const bool negative = *text == '-';
    if (negative || *text == '+') {
        text++;
    }
    const bool hexadecimal = text[0] == '0' && lower_case(text[1]) == 'x';
    const uint32_t base = hexadecimal ? 16 : text[0] == '0' ? 8 : 10;
    uint64_t number = 0;
    for (text += hexadecimal ? 2 : 0; digit_of(*text) < base; text++) {
        number = number * base + digit_of(*text);
        if (number > UINT32_MAX) {
            return UINT32_MAX;
        }
    }
    return negative ? 0u - static_cast<uint32_t>(number) : static_cast<uint32_t>(number);
}
