// Looking into rows, and copying them into records.
#include "db/row.hh"

#include <string.h>

#include "db/copy_text.hh"
#include "libcmpnt_db.h"

namespace {

constexpr int no_column = -1;

int column_of(const Row &row, const char *name) {
    for (int column = 0; column < row.columns; column++) {
        if (row.names[column] != nullptr && strcmp(row.names[column], name) == 0) {
            return column;
        }
    }
    return no_column;
}

void copy_value(const RecordField &field, const char *value, char *record) {
    char *place = record + field.offset;
    if (field.kind == FieldKind::number) {
        const int32_t number = column_number(value);
        memcpy(place, &number, sizeof(number));
    } else if (value == nullptr) {
        *place = '\0';
    } else if (field.kind == FieldKind::state_word) {
        copy_text(place, field.size, cmpnt_conver_state_to_str(column_number(value)));
    } else {
        copy_text(place, field.size, value);
    }
}

}  // namespace

const char *Row::text(const char *name) const {
    const int column = column_of(*this, name);
    return column == no_column ? nullptr : values[column];
}

void RowCopier::find_columns(const Row &row) {
    for (size_t i = 0; i < count_; i++) {
        columns_[i] = column_of(row, fields_[i].column);
    }
    columns_are_known_ = true;
}

void RowCopier::copy(const Row &row, void *record) {
    if (!columns_are_known_) {
        find_columns(row);
    }
    for (size_t i = 0; i < count_; i++) {
        if (columns_[i] != no_column) {
            copy_value(fields_[i], row.values[columns_[i]], static_cast<char *>(record));
        }
    }
}
