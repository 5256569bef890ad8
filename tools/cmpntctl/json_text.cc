// Escaping, done in runs: nearly all texts have nothing to escape.
#include "json_text.hh"

#include <stdio.h>

#include "utf8.hh"

namespace cmpntctl {
namespace {

constexpr char replacement[] = "\xEF\xBF\xBD";

bool is_plain(unsigned char byte) {
    return byte >= 0x20 && byte < 0x7F && byte != '"' && byte != '\\';
}

void append_escaped(std::string &json, unsigned char byte) {
    switch (byte) {
        case '"':
        case '\\':
            json += '\\';
            json += static_cast<char>(byte);
            return;
        case '\n':
            json += "\\n";
            return;
        case '\t':
            json += "\\t";
            return;
        default:
            char escaped[8];
            snprintf(escaped, sizeof(escaped), "\\u%04x", static_cast<unsigned>(byte));
            json += escaped;
    }
}

// Appends the character there and returns how many bytes it has.
size_t append_character(std::string &json, const unsigned char *bytes, size_t count) {
    if (bytes[0] < 0x80) {
        append_escaped(json, bytes[0]);
        return 1;
    }
    const size_t length = utf8_length(bytes, count);
    if (length == 0) {
        json += replacement;
        return utf8_broken_length(bytes, count);
    }
    json.append(reinterpret_cast<const char *>(bytes), length);
    return length;
}

}  // namespace

void append_json_string(std::string &json, const char *text, size_t size) {
    const unsigned char *bytes = reinterpret_cast<const unsigned char *>(text);
    json += '"';
    for (size_t i = 0; i < size;) {
        const size_t start = i;
        while (i < size && is_plain(bytes[i])) {
            i++;
        }
        json.append(text + start, i - start);
        if (i < size) {
            i += append_character(json, bytes + i, size - i);
        }
    }
    json += '"';
}

}  // namespace cmpntctl
