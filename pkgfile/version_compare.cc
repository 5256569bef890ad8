// The order of two version strings: numbers by value, everything else character by character.
#include <ctype.h>

#include "common/log.hh"

namespace {

enum {
    NO_ORDER = -1,
    OLDER = CMPNT_VERSION_OLDER,
    EQUAL = CMPNT_VERSION_EQUAL,
    NEWER = CMPNT_VERSION_NEWER
};

struct Weights {
    int16_t of[128];
};

constexpr Weights ascii_weights() {
    Weights weights = {};
    for (int c = 1; c < 128; c++) {
        const bool letter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
        const bool digit = c >= '0' && c <= '9';
        weights.of[c] = static_cast<int16_t>(digit ? 0 : letter ? c : c + 256);
    }
    weights.of[static_cast<int>('~')] = -1;  // before everything, the end of the text included
    return weights;
}

constexpr Weights ascii = ascii_weights();

// Beyond ASCII it is the locale that says what a letter is. Distinct characters that are no digits
// have distinct weights.
int version_char_order(unsigned char c) {
    if (c < sizeof(ascii.of) / sizeof(ascii.of[0])) {
        return ascii.of[c];
    }
    return isalpha(c) ? c : c + 256;
}

bool is_digit(unsigned char c) { return static_cast<unsigned>(c) - '0' < 10; }

// Moves both cursors behind their numbers, which may have any length. The end of a text is 0.
int32_t compare_numbers(const unsigned char *&a, const unsigned char *&b) {
    while (*a == '0') {
        a++;
    }
    while (*b == '0') {
        b++;
    }
    int difference = 0;
    for (; is_digit(*a) && is_digit(*b); a++, b++) {
        if (difference == 0) {
            difference = *a - *b;
        }
    }
    if (is_digit(*a)) {
        return NEWER;
    }
    if (is_digit(*b)) {
        return OLDER;
    }
    return difference == 0 ? EQUAL : difference > 0 ? NEWER : OLDER;
}

// Runs over the text that both have in common and looks closer only where they part.
int32_t compare_texts(const unsigned char *a, const unsigned char *b) {
    const unsigned char *start = a;
    for (;;) {
        for (; *a == *b; a++, b++) {
            if (*a == '\0') {
                return EQUAL;
            }
        }
        // Within a number the digits before this one count.
        if (is_digit(*a) || is_digit(*b)) {
            for (; a != start && is_digit(a[-1]); a--) {
                b--;
            }
        }
        const int difference = version_char_order(*a) - version_char_order(*b);
        if (difference != 0) {
            return difference > 0 ? NEWER : OLDER;
        }
        const int32_t order = compare_numbers(a, b);
        if (order != EQUAL) {
            return order;
        }
        start = a;
    }
}

}  // namespace

int32_t cmpnt_version_compare(const char *a, const char *b) {
    if (a == nullptr || b == nullptr) {
        CMPNT_LOG(log_error, "param is null.\n");
        return NO_ORDER;
    }
    return compare_texts(reinterpret_cast<const unsigned char *>(a),
                         reinterpret_cast<const unsigned char *>(b));
}
