// "Field: value" lines: which field a line is, and what its value is.
#include "pkgfile/field.hh"

#include <string.h>

#include "common/guard.hh"
#include "common/log.hh"

namespace {

// Only so much of a line is split.
constexpr size_t split_length = CMPNT_LINE_SIZE - 1;

char *xstrndup(const char *text, size_t length) {
    char *copy = strndup(text, length);
    if (copy == nullptr) {
        CMPNT_LOG(log_error, "param is null.\n");
    }
    return copy;
}

// A new copy of the line's value, or null.
char *parse_simple(const char *field, const char *line) {
    const FieldText value = field_value(line, strlen(line), strlen(field));
    if (value.length == 0) {
        return nullptr;
    }
    char *copy = xstrndup(value.text, value.length);
    if (copy == nullptr) {
        CMPNT_LOG(log_error, "param is null.\n");
    }
    return copy;
}

bool is_trimmed_text(const char *text, size_t length, const char *field) {
    const FieldText key = trimmed(text, length);
    return strncmp(key.text, field, key.length) == 0 && field[key.length] == '\0';
}

const char *find_separator(const char *text, const char *separators) {
    return separators[0] != '\0' && separators[1] == '\0' ? strchrnul(text, separators[0])
                                                          : text + strcspn(text, separators);
}

// Whether the split of the line has a chance to meet its limit.
bool has_many_pieces(const char *line, const char *separators) {
    if (strnlen(line, shortest_overfull_line) < shortest_overfull_line) {
        return false;
    }
    int32_t pieces = 1;
    const char *end = find_separator(line, separators);
    while (*end != '\0' && static_cast<size_t>(end - line) < split_length) {
        if (++pieces == piece_limit) {
            return true;
        }
        end = find_separator(end + 1, separators);
    }
    return false;
}

}  // namespace

int32_t cmpnt_parse_str_field(const char *field, const char *line, char *dst, int32_t size) {
    if (field == nullptr || line == nullptr || dst == nullptr) {
        CMPNT_LOG(log_error, "input param is null.\n");
        return -1;
    }
    if (size < 1) {
        return -1;
    }
    const HeapText value(parse_simple(field, line));
    if (!value) {
        CMPNT_LOG(log_trace, "parse_simple fail, field(%s), line(%s).\n", field, line);
        return -1;
    }
    memset(dst, 0, static_cast<size_t>(size));
    snprintf(dst, static_cast<size_t>(size), "%s", value.get());
    return 0;
}

// Only the first piece matters, so a usual line is not split at all. The rest, null arguments and
// lines of too many pieces, is split for the messages of the failure that it is.
int32_t cmpnt_is_field(const char *field, const char *line, const char *separator) {
    if (line != nullptr && separator != nullptr && !has_many_pieces(line, separator)) {
        size_t length = static_cast<size_t>(find_separator(line, separator) - line);
        length = length < split_length ? length : split_length;
        return field != nullptr && is_trimmed_text(line, length, field) ? 1 : 0;
    }
    char *pieces[piece_limit] = {};
    int32_t count = 0;
    cmpnt_detach_install_queue(line, separator, pieces, &count, piece_limit);
    CMPNT_LOG(log_error, "cmpnt_detach_install_queue fail.\n");
    cmpnt_recycle_pointer_array(pieces, piece_limit);
    return 0;
}
