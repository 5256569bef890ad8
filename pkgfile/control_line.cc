// One line of a control, status or file-list file into the control record.
#include "pkgfile/control_line.hh"

#include <string.h>

#include "common/log.hh"
#include "pkgfile/field.hh"
#include "pkgfile/number.hh"
#include "pkgfile/stream_reader.hh"

namespace {

constexpr uint32_t owned_text_size = 512;

enum class Kind : uint8_t { text, owned_text, signed_number, unsigned_number };

struct ControlField {
    char letter;  // a line that begins with it, in either case, is tried
    Kind kind;
    uint16_t offset;
    uint16_t size;
    uint16_t name_length;
    const char *name;
};

#define CONTROL_FIELD(letter, kind, member, name)                                                  \
    {                                                                                              \
        letter, Kind::kind, offsetof(cmpnt_control_info, member),                                  \
            sizeof(cmpnt_control_info::member), sizeof(name) - 1, name                             \
    }
constexpr ControlField control_fields[] = {
    CONTROL_FIELD('a', text, architecture, "Architecture"),
    CONTROL_FIELD('c', owned_text, card_type, "Card_type"),
    CONTROL_FIELD('d', text, description, "Description"),
    CONTROL_FIELD('i', signed_number, is_reboot, "Is_reboot"),
    CONTROL_FIELD('i', unsigned_number, installed_size, "Installed-Size"),
    CONTROL_FIELD('i', unsigned_number, installed_time, "Installed-Time"),
    CONTROL_FIELD('m', text, md5_sum, "MD5Sum"),
    CONTROL_FIELD('p', text, package, "Package"),
    CONTROL_FIELD('s', owned_text, serial, "Serial"),
    CONTROL_FIELD('v', text, version, "Version"),
    {'\0', Kind::text, 0, 0, 0, nullptr},  // ends the rows of the last letter
};
#undef CONTROL_FIELD

constexpr uint8_t last_row = sizeof(control_fields) / sizeof(control_fields[0]) - 1;

// The first row of each letter, by the letter's low bits; the last row for all others.
struct FirstRows {
    uint8_t of_letter[32];
};

constexpr FirstRows find_first_rows() {
    FirstRows rows = {};
    for (uint8_t &row : rows.of_letter) {
        row = last_row;
    }
    for (uint8_t row = last_row; row-- > 0;) {
        rows.of_letter[control_fields[row].letter & 0x1F] = row;
    }
    return rows;
}

constexpr FirstRows first_rows = find_first_rows();

bool value_of(TextLine line, size_t name_length, FieldText &value) {
    value = field_value(line.text, line.length, name_length);
    if (value.length > 0) {
        return true;
    }
    CMPNT_LOG_AS(log_error, control_handler_name, "parse_simple fail.\n");
    return false;
}

int32_t take_text(TextLine line, size_t name_length, char *destination, size_t size) {
    FieldText value;
    if (!value_of(line, name_length, value)) {
        return handler_stop;
    }
    const size_t length = value.length < size ? value.length : size - 1;
    memcpy(destination, value.text, length);
    destination[length] = '\0';
    return 0;
}

// The block that an owned text is to be stored in, empty; null without memory.
char *owned_block(void *member) {
    char **block = static_cast<char **>(member);
    if (*block == nullptr) {
        *block = static_cast<char *>(cmpnt_malloc(owned_text_size));
    }
    if (*block == nullptr) {
        CMPNT_LOG_AS(log_error, control_handler_name, "cmpnt_malloc fail.\n");
        return nullptr;
    }
    memset(*block, 0, owned_text_size);
    return *block;
}

int32_t take_owned_text(TextLine line, size_t name_length, int32_t mode, void *member) {
    if (mode != READ_PKG_INFO_FROM_CONTROL) {
        CMPNT_LOG_AS(log_trace, control_handler_name,
                     "param index is not READ_PKG_INFO_FROM_CONTROL.\n");
        return 0;
    }
    char *block = owned_block(member);
    return block == nullptr ? handler_stop : take_text(line, name_length, block, owned_text_size);
}

int32_t take_field(const ControlField &field, TextLine line, int32_t mode,
                   cmpnt_control_info *record) {
    void *member = reinterpret_cast<char *>(record) + field.offset;
    if (field.kind == Kind::text) {
        return take_text(line, field.name_length, static_cast<char *>(member), field.size);
    }
    if (field.kind == Kind::owned_text) {
        return take_owned_text(line, field.name_length, mode, member);
    }
    FieldText value;
    if (!value_of(line, field.name_length, value)) {
        return handler_stop;
    }
    if (field.kind == Kind::signed_number) {
        *static_cast<int32_t *>(member) = decimal_number(value.text);
    } else {
        *static_cast<uint32_t *>(member) = prefixed_number(value.text);
    }
    return 0;
}

// What cmpnt_is_field says of a line that begins with the field's letter. Most lines are told from a
// field by their second character; long ones may have too many pieces, which is to be reported.
bool is_control_field(const ControlField &field, TextLine line) {
    const size_t length = field.name_length;
    if (line.length < shortest_overfull_line) {
        if (line.length < length || line.text[1] != field.name[1] ||
            memcmp(line.text, field.name, length) != 0) {
            return false;
        }
        if (line.text[length] == ':') {
            return true;
        }
    }
    return cmpnt_is_field(field.name, line.text, ":") == 1;
}

int32_t parse_fields(const ControlField *field, TextLine line, int32_t mode,
                     cmpnt_control_info *record) {
    for (const char letter = field->letter; field->letter == letter; field++) {
        if (is_control_field(*field, line)) {
            return take_field(*field, line, mode, record);
        }
    }
    return 0;
}

// Mode 5: the first line that begins with the name, whatever follows there.
int32_t take_wanted_field(const char *name, TextLine line, cmpnt_control_info *record) {
    if (name == nullptr || line_is_blank(line.text)) {
        return 0;
    }
    const size_t name_length = strlen(name);
    if (strncmp(line.text, name, name_length) != 0) {
        return 0;
    }
    take_text(line, name_length, record->md5_sum, sizeof(record->md5_sum));
    return handler_stop;
}

bool ends_paragraph(TextLine line) {
    return line.length == 0 || (is_space(line.text[line.length - 1]) && line_is_blank(line.text));
}

}  // namespace

int32_t parse_control_line(void *record, TextLine line, cmpnt_file_param *param) {
    if (record == nullptr || line.text == nullptr || param == nullptr) {
        CMPNT_LOG_AS(log_error, control_handler_name, "input param is null.\n");
        return -1;
    }
    cmpnt_control_info *info = static_cast<cmpnt_control_info *>(record);
    if (param->mode == CMPNT_PARSE_ONE_FIELD) {
        return take_wanted_field(reinterpret_cast<const char *>(param->name), line, info);
    }
    const ControlField *field = &control_fields[first_rows.of_letter[line.text[0] & 0x1F]];
    if (field->letter == lower_case(line.text[0])) {
        return parse_fields(field, line, param->mode, info);
    }
    if (line.text[0] == '/') {
        return param->mode == CMPNT_PARSE_BACKUP_FILES ? back_up_path(line.text) : 0;
    }
    return ends_paragraph(line) ? cmpnt_file_blank_line_deal(info, param) : 0;
}

int32_t cmpnt_parse_line(void *record, char *line, cmpnt_file_param *param) {
    return parse_control_line(record, {line, line == nullptr ? 0 : strlen(line)}, param);
}
