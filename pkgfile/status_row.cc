// A package of a status file as a row of the database.
#include <sqlite3.h>

#include "pkgfile/control_line.hh"

// The texts are copied, for the statement outlives the record; its failures are its owner's to see.
void store_status_row(void *statement, const cmpnt_control_info &record) {
    sqlite3_stmt *row = static_cast<sqlite3_stmt *>(statement);
    if (row == nullptr || cmpnt_name_is_null(record.package, sizeof(record.package)) == 1) {
        return;
    }
    sqlite3_reset(row);
    sqlite3_bind_text(row, 1, record.package, -1, SQLITE_TRANSIENT);
    sqlite3_bind_text(row, 2, record.version, -1, SQLITE_TRANSIENT);
    sqlite3_bind_text(row, 3, nullptr, -1, SQLITE_STATIC);
    sqlite3_bind_int(row, 4, 0);
    sqlite3_bind_int(row, 5, 0);
    sqlite3_bind_int(row, 6, 1);
    sqlite3_step(row);
}
