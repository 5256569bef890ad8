// Characters told from bytes that are none, after the Unicode standard's table of well-formed
// sequences.
#include "utf8.hh"

namespace cmpntctl {
namespace {

struct Form {
    unsigned char first_low, first_high;    // of the leading byte
    unsigned char second_low, second_high;  // of the next; those behind it are 80 to BF
    size_t length;
};

constexpr Form forms[] = {
    {0x00, 0x7F, 0x00, 0x00, 1}, {0xC2, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3},
    {0xE1, 0xEC, 0x80, 0xBF, 3}, {0xED, 0xED, 0x80, 0x9F, 3}, {0xEE, 0xEF, 0x80, 0xBF, 3},
    {0xF0, 0xF0, 0x90, 0xBF, 4}, {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4},
};

const Form *form_of(unsigned char first) {
    for (const Form &form : forms) {
        if (first >= form.first_low && first <= form.first_high) {
            return &form;
        }
    }
    return nullptr;
}

// How far the bytes keep to the form.
size_t matching(const Form &form, const unsigned char *bytes, size_t count) {
    size_t length = 1;
    while (length < form.length && length < count) {
        const unsigned char low = length == 1 ? form.second_low : 0x80;
        const unsigned char high = length == 1 ? form.second_high : 0xBF;
        if (bytes[length] < low || bytes[length] > high) {
            break;
        }
        length++;
    }
    return length;
}

}  // namespace

size_t utf8_length(const unsigned char *bytes, size_t count) {
    const Form *form = form_of(bytes[0]);
    return form != nullptr && matching(*form, bytes, count) == form->length ? form->length : 0;
}

size_t utf8_broken_length(const unsigned char *bytes, size_t count) {
    const Form *form = form_of(bytes[0]);
    return form != nullptr ? matching(*form, bytes, count) : 1;
}

}  // namespace cmpntctl
