// "Field: value" lines.
#ifndef CMPNT_PKGFILE_FIELD_HH
#define CMPNT_PKGFILE_FIELD_HH

#include <ctype.h>

#include "libcmpnt_db.h"

// A line is split into fewer pieces than this; one of as many has at least a separator less than that
// in characters.
inline constexpr int32_t piece_limit = 80;
inline constexpr size_t shortest_overfull_line = piece_limit - 1;

// A part of a line: its value has length 0 when there is none.
struct FieldText {
    const char *text;
    size_t length;
};

// Visible ASCII, nearly all there is, is white space nowhere.
inline bool is_space(char c) {
    const unsigned char byte = static_cast<unsigned char>(c);
    return (byte <= ' ' || byte > '~') && isspace(byte) != 0;
}

// The letters' lower case; other characters become others.
inline char lower_case(char letter) { return static_cast<char>(letter | 0x20); }

inline FieldText trimmed(const char *text, size_t length) {
    const char *end = text + length;
    while (text < end && is_space(*text)) {
        text++;
    }
    while (end > text && is_space(end[-1])) {
        end--;
    }
    return {text, static_cast<size_t>(end - text)};
}

// The value starts one character, the colon, behind the field's name; neither is compared.
inline FieldText field_value(const char *line, size_t length, size_t field_length) {
    if (length <= field_length) {
        return {line, 0};  // the name alone: a value would lie behind the line's end
    }
    return trimmed(line + field_length + 1, length - field_length - 1);
}

inline bool line_is_blank(const char *line) {
    while (is_space(*line)) {
        line++;
    }
    return *line == '\0';
}

#endif
