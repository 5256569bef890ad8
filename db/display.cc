// The show views: rows as columns of fixed width on the operator's terminal.
#include <string.h>

#include "common/log.hh"
#include "db/row.hh"

namespace {

enum class Shown { text, state, sync_flag };

struct ShownColumn {
    const char *name;
    int width;
    Shown shown;
};

struct View {
    const ShownColumn *columns;
    size_t count;
};

constexpr ShownColumn full_columns[] = {
    {column::package_name, 25, Shown::text},    {column::base_version, 20, Shown::text},
    {column::current_version, 20, Shown::text}, {column::package_state, 20, Shown::text},
    {column::package_is_new, 20, Shown::text},  {column::upgrade_count, 20, Shown::text},
    {column::patch_name, 32, Shown::text},      {column::pkg_name, 15, Shown::text},
    {column::cur_version, 14, Shown::text},     {column::last_version, 14, Shown::text},
    {column::pkg_state, 12, Shown::state},      {column::card_id, 10, Shown::text},
    {column::cur_flag, 10, Shown::text},        {column::op_flag, 10, Shown::text},
    {column::sync_id, 20, Shown::text},         {column::sync_flag, 20, Shown::sync_flag},
};

constexpr ShownColumn state_columns[] = {
    {column::package_name, 25, Shown::text},    {column::base_version, 20, Shown::text},
    {column::current_version, 20, Shown::text}, {column::package_state, 20, Shown::text},
    {column::package_is_new, 20, Shown::text},  {column::upgrade_count, 20, Shown::text},
    {column::patch_name, 36, Shown::text},      {column::pkg_name, 25, Shown::text},
    {column::cur_version, 15, Shown::text},     {column::pkg_state, 15, Shown::state},
};

constexpr View full_view = {full_columns, sizeof(full_columns) / sizeof(full_columns[0])};
constexpr View state_view = {state_columns, sizeof(state_columns) / sizeof(state_columns[0])};

const ShownColumn *find_column(const View &view, const char *name) {
    for (size_t i = 0; name != nullptr && i < view.count; i++) {
        if (strcmp(view.columns[i].name, name) == 0) {
            return &view.columns[i];
        }
    }
    return nullptr;
}

// A width is both the least and the most: short texts are padded, long ones cut.
void print_cell(int width, const char *text) {
    switch (width) {
        case 10:
            cli_printf("%-10.10s", text);
            break;
        case 12:
            cli_printf("%-12.12s", text);
            break;
        case 14:
            cli_printf("%-14.14s", text);
            break;
        case 15:
            cli_printf("%-15.15s", text);
            break;
        case 20:
            cli_printf("%-20.20s", text);
            break;
        case 25:
            cli_printf("%-25.25s", text);
            break;
        case 32:
            cli_printf("%-32.32s", text);
            break;
        case 36:
            cli_printf("%-36.36s", text);
            break;
        default:
            break;  // no view has another width
    }
}

const char *shown_text(Shown shown, const char *value) {
    switch (shown) {
        case Shown::state:
            return cmpnt_conver_state_to_str(column_number(value));
        case Shown::sync_flag:
            return cmpnt_conver_sync_flag_to_str(column_number(value));
        default:
            return value;
    }
}

bool is_row(int32_t columns, char **values, char **names) {
    return columns <= 0 || (values != nullptr && names != nullptr);
}

void print_values(const View &view, int32_t columns, char **values, char **names) {
    if (!is_row(columns, values, names)) {
        return;
    }
    for (int32_t i = 0; i < columns; i++) {
        const ShownColumn *shown = find_column(view, names[i]);
        if (shown != nullptr && values[i] != nullptr) {
            print_cell(shown->width, shown_text(shown->shown, values[i]));
        }
    }
    cli_printf("\n");
}

// On the first row of a select alone.
void print_header_once(const View &view, void *counter, int columns, char **names) {
    int32_t *printed = static_cast<int32_t *>(counter);
    if (*printed != 0) {
        return;
    }
    *printed = 1;
    for (int i = 0; i < columns; i++) {
        const ShownColumn *shown = find_column(view, names[i]);
        if (shown != nullptr) {
            print_cell(shown->width, names[i]);
        }
    }
    cli_printf("\n");
}

int show_row_in_state(int32_t state, void *counter, int columns, char **values, char **names) {
    if (counter == nullptr || !is_row(columns, values, names)) {
        return -1;
    }
    print_header_once(state_view, counter, columns, names);
    if (Row{columns, values, names}.number(column::pkg_state) == state) {
        cmpnt_show_state_field_value(columns, values, names);
    }
    return 0;
}

}  // namespace

void cmpnt_show_db_field_value(int32_t columns, char **values, char **names) {
    print_values(full_view, columns, values, names);
}

void cmpnt_show_state_field_value(int32_t columns, char **values, char **names) {
    print_values(state_view, columns, values, names);
}

int select_all_callback(void *counter, int columns, char **values, char **names) {
    if (counter == nullptr || !is_row(columns, values, names)) {
        return -1;
    }
    print_header_once(full_view, counter, columns, names);
    cmpnt_show_db_field_value(columns, values, names);
    return 0;
}

int select_active_callback(void *counter, int columns, char **values, char **names) {
    return show_row_in_state(CMPNT_STATE_ACTIVE, counter, columns, values, names);
}

int select_running_callback(void *counter, int columns, char **values, char **names) {
    return show_row_in_state(CMPNT_STATE_RUNNING, counter, columns, values, names);
}
