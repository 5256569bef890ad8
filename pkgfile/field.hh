// "Field: value" lines.
#ifndef CMPNT_PKGFILE_FIELD_HH
#define CMPNT_PKGFILE_FIELD_HH

#include <ctype.h>

#include "libcmpnt_db.h"

// A line is split into fewer pieces than this; one of as many has at least a separator less than that
// in characters.
inline constexpr int32_t piece_limit = 80;
inline constexpr size_t shortest_overfull_line = piece_limit - 1;

// The trimmed value of a line, inside the line; its length is 0 when there is none.
struct FieldValue {
    const char *text;
    size_t length;
};

// Visible ASCII, nearly all there is, is white space nowhere.
inline bool is_space(char c) {
    const unsigned char byte = static_cast<unsigned char>(c);
    return (byte <= ' ' || byte > '~') && isspace(byte) != 0;
}

// The value starts one character, the colon, behind the field's name; neither is compared.
inline FieldValue field_value(const char *line, size_t length, size_t field_length) {
    if (length <= field_length) {
        return {line, 0};  // the name alone: a value would lie behind the line's end
    }
    const char *start = line + field_length + 1;
    const char *end = line + length;
    while (start < end && is_space(*start)) {
        start++;
    }
    while (end > start && is_space(end[-1])) {
        end--;
    }
    return {start, static_cast<size_t>(end - start)};
}

inline bool line_is_blank(const char *line) {
    while (is_space(*line)) {
        line++;
    }
    return *line == '\0';
}

#endif
