// A row as SQLite hands it to a callback: values as text, columns known by their names alone.
#ifndef CMPNT_DB_ROW_HH
#define CMPNT_DB_ROW_HH

#include <stddef.h>
#include <stdint.h>

#include "db/tables.hh"

struct Row {
    int columns;
    char **values;  // each may be null
    char **names;

    bool is_null() const { return values == nullptr || names == nullptr; }

    // Value of the column with this name; null for a null value and for a column that is not there.
    const char *text(const char *name) const;
    int32_t number(const char *name) const { return column_number(text(name)); }
};

// A field of a record and the column that fills it.
enum class FieldKind : uint8_t { number, text, state_word };
struct RecordField {
    const char *column;
    uint16_t offset;
    uint16_t size;
    FieldKind kind;
};

template <typename Member>
constexpr FieldKind kind_of = FieldKind::text;
template <>
inline constexpr FieldKind kind_of<int32_t> = FieldKind::number;

// The field of a record that bears its column's name.
#define CMPNT_RECORD_FIELD(record, name)                                                           \
    RecordField {                                                                                  \
        column::name, offsetof(record, name), sizeof(record::name),                                \
            kind_of<decltype(record::name)>                                                        \
    }

// Copies rows of one statement into records of one kind. Which column fills which field is looked up
// at the first row: it is the same for all that follow.
class RowCopier {
public:
    template <size_t size>
    explicit RowCopier(const RecordField (&fields)[size]) : fields_(fields), count_(size) {
        static_assert(size <= max_fields, "raise max_fields");
    }

    // Texts are cut to their fields; a null value empties its field. A field without a column keeps
    // what it holds.
    void copy(const Row &row, void *record);

private:
    static constexpr size_t max_fields = 24;

    void find_columns(const Row &row);

    const RecordField *fields_;
    size_t count_;
    bool columns_are_known_ = false;
    int columns_[max_fields];  // -1: the statement has none for this field
};

#endif
