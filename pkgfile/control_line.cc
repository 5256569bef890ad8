// One line of a control, status or file-list file into the control record.
#include "pkgfile/control_line.hh"

#include <ctype.h>
#include <errno.h>
#include <stdlib.h>
#include <string.h>

#include "common/log.hh"
#include "pkgfile/field.hh"
#include "pkgfile/stream_reader.hh"

namespace {

constexpr uint32_t owned_text_size = 512;

enum class Kind : uint8_t { text, owned_text, signed_number, unsigned_number };

struct ControlField {
    char letter;  // a line that begins with it, in either case, is tried
    Kind kind;
    uint16_t offset;
    uint16_t size;
    const char *name;
};

#define CONTROL_FIELD(letter, kind, member, name)                                                  \
    {                                                                                              \
        letter, Kind::kind, offsetof(cmpnt_control_info, member),                                  \
            sizeof(cmpnt_control_info::member), name                                               \
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
};
#undef CONTROL_FIELD

void copy_value(char *destination, size_t size, const FieldValue &value) {
    const size_t length = value.length < size ? value.length : size - 1;
    memcpy(destination, value.text, length);
    destination[length] = '\0';
}

// Saturates like strtol and strtoul on the device, whose long has 32 bits.
int32_t to_signed(const char *text) {
    const long long number = strtoll(text, nullptr, 10);
    return number > INT32_MAX ? INT32_MAX
                              : static_cast<int32_t>(number < INT32_MIN ? INT32_MIN : number);
}

uint32_t to_unsigned(const char *text) {
    const bool negative = *text == '-';
    if (negative || *text == '+') {
        text++;
    }
    if (!isdigit(static_cast<unsigned char>(*text))) {
        return 0;
    }
    const int base = text[0] != '0' ? 10 : (text[1] | 0x20) == 'x' ? 16 : 8;
    const unsigned long long number = strtoull(text, nullptr, base);
    if (number > UINT32_MAX) {
        return UINT32_MAX;
    }
    return negative ? 0u - static_cast<uint32_t>(number) : static_cast<uint32_t>(number);
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

bool value_of(const char *field, const char *line, FieldValue &value) {
    value = field_value(field, line);
    if (value.length > 0) {
        return true;
    }
    CMPNT_LOG_AS(log_error, control_handler_name, "parse_simple fail.\n");
    return false;
}

int32_t take_text(const char *field, const char *line, char *destination, size_t size) {
    FieldValue value;
    if (!value_of(field, line, value)) {
        return handler_stop;
    }
    copy_value(destination, size, value);
    return 0;
}

int32_t take_owned_text(const ControlField &field, const char *line, int32_t mode, void *member) {
    if (mode != READ_PKG_INFO_FROM_CONTROL) {
        CMPNT_LOG_AS(log_trace, control_handler_name,
                     "param index is not READ_PKG_INFO_FROM_CONTROL.\n");
        return 0;
    }
    char *block = owned_block(member);
    return block == nullptr ? handler_stop : take_text(field.name, line, block, owned_text_size);
}

int32_t take_field(const ControlField &field, const char *line, int32_t mode,
                   cmpnt_control_info *record) {
    void *member = reinterpret_cast<char *>(record) + field.offset;
    if (field.kind == Kind::text) {
        return take_text(field.name, line, static_cast<char *>(member), field.size);
    }
    if (field.kind == Kind::owned_text) {
        return take_owned_text(field, line, mode, member);
    }
    FieldValue value;
    if (!value_of(field.name, line, value)) {
        return handler_stop;
    }
    if (field.kind == Kind::signed_number) {
        *static_cast<int32_t *>(member) = to_signed(value.text);
    } else {
        *static_cast<uint32_t *>(member) = to_unsigned(value.text);
    }
    return 0;
}

// Mode 5: the first line that begins with the name, whatever follows there.
int32_t take_wanted_field(const char *name, const char *line, cmpnt_control_info *record) {
    if (name == nullptr || line_is_blank(line) || strncmp(line, name, strlen(name)) != 0) {
        return 0;
    }
    take_text(name, line, record->md5_sum, sizeof(record->md5_sum));
    return handler_stop;
}

int32_t parse_fields(cmpnt_control_info *record, const char *line, int32_t mode) {
    const char letter = static_cast<char>(line[0] | 0x20);
    for (const ControlField &field : control_fields) {
        if (field.letter == letter && cmpnt_is_field(field.name, line, ":") == 1) {
            return take_field(field, line, mode, record);
        }
    }
    return 0;
}

}  // namespace

int32_t cmpnt_parse_line(void *record, char *line, cmpnt_file_param *param) {
    if (record == nullptr || line == nullptr || param == nullptr) {
        CMPNT_LOG(log_error, "input param is null.\n");
        return -1;
    }
    cmpnt_control_info *info = static_cast<cmpnt_control_info *>(record);
    if (param->mode == CMPNT_PARSE_ONE_FIELD) {
        return take_wanted_field(reinterpret_cast<const char *>(param->name), line, info);
    }
    if (line[0] == '/') {
        return param->mode == CMPNT_PARSE_BACKUP_FILES ? back_up_path(line) : 0;
    }
    if (line_is_blank(line)) {
        return cmpnt_file_blank_line_deal(info, param);
    }
    return parse_fields(info, line, param->mode);
}
