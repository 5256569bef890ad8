// One line of a product-type or history file into its record, and what a record's end does.
#include "pkgfile/config_line.hh"

#include <string.h>

#include "common/log.hh"
#include "pkgfile/field.hh"
#include "pkgfile/stream_reader.hh"

namespace {

struct ConfigField {
    char letter;
    const char *name;
    size_t offset;
    int32_t size;
    bool may_fail;  // an empty value is no reason to stop
};

#define CONFIG_FIELD(letter, name, record, member, may_fail)                                       \
    { letter, name, offsetof(record, member), sizeof(record::member), may_fail }
constexpr ConfigField product_fields[] = {
    CONFIG_FIELD('p', "Product", cmpnt_product_type, product, false),
    CONFIG_FIELD('t', "Type", cmpnt_product_type, type, false),
};

constexpr ConfigField history_fields[] = {
    CONFIG_FIELD('c', "Cmd", cmpnt_history, cmd, false),
    CONFIG_FIELD('m', "Msg", cmpnt_history, msg, true),
    CONFIG_FIELD('p', "Patch", cmpnt_history, patch, false),
    CONFIG_FIELD('s', "Smu_name", cmpnt_history, patch, true),
    CONFIG_FIELD('t', "Time", cmpnt_history, time, false),
};
#undef CONFIG_FIELD

template <size_t count>
const ConfigField *field_of_letter(const ConfigField (&fields)[count], char letter) {
    for (const ConfigField &field : fields) {
        if (field.letter == letter) {
            return &field;
        }
    }
    return nullptr;
}

void print_history(const cmpnt_history &record) {
    constexpr char indent[] = "    ";
    cli_printf("%s%s:      %s\n", indent, "Time", record.time);
    cli_printf("%s%s:       %s\n", indent, "Cmd", record.cmd);
    cli_printf("%s%s:     %s\n", indent, "Patch", record.patch);
    cli_printf("%s%s:       %s\n", indent, "Msg", record.msg);
    cli_printf("\n");
}

void log_history(const cmpnt_history &record) {
    CMPNT_SHOW(show_history, "\n");
    CMPNT_SHOW(show_history, "%-16s%-32s\n", "Time", record.time);
    CMPNT_SHOW(show_history, "%-16s%-32s\n", "Cmd", record.cmd);
    CMPNT_SHOW(show_history, "%-16s%-80s\n", "Patch", record.patch);
    CMPNT_SHOW(show_history, "%-16s%-128s\n", "Msg", record.msg);
    CMPNT_SHOW(show_history, "\n");
}

int32_t cmpnt_config_blank_line_deal(void *record, int32_t mode) {
    switch (mode) {
        case config_find_cpu_product: {
            const cmpnt_product_type *product = static_cast<cmpnt_product_type *>(record);
            if (strcmp(product->type, "cpu") == 0) {
                CMPNT_LOG(log_trace, "the product(%s) is target, so stop look.\n",
                          product->product);
                return handler_stop;
            }
            memset(record, 0, sizeof(*product));
            return 0;
        }
        case config_print_history:
            print_history(*static_cast<cmpnt_history *>(record));
            memset(record, 0, sizeof(cmpnt_history));
            return 0;
        case config_log_history:
            log_history(*static_cast<cmpnt_history *>(record));
            memset(record, 0, sizeof(cmpnt_history));
            return 0;
        default:
            return 0;
    }
}

}  // namespace

int32_t cmpnt_parse_config_file(void *record, char *line, cmpnt_file_param *param) {
    if (record == nullptr || line == nullptr || param == nullptr) {
        CMPNT_LOG(log_error, "input param is null.\n");
        return -1;
    }
    const int32_t mode = param->mode;
    if (mode < config_find_cpu_product || mode > config_log_history) {
        return 0;
    }
    if (line_is_blank(line)) {
        return cmpnt_config_blank_line_deal(record, mode);
    }
    const char letter = lower_case(line[0]);
    const ConfigField *field = mode <= config_last_product
                                   ? field_of_letter(product_fields, letter)
                                   : field_of_letter(history_fields, letter);
    if (field == nullptr || cmpnt_is_field(field->name, line, ":") == 0) {
        return 0;
    }
    char *destination = static_cast<char *>(record) + field->offset;
    if (cmpnt_parse_str_field(field->name, line, destination, field->size) == 0 ||
        field->may_fail) {
        return 0;
    }
    CMPNT_LOG(log_error, "cmpnt_parse_str_field fail.\n");
    return handler_stop;
}
