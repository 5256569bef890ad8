// One select, or one operation of the library, each with the lock held no longer than it takes.
#include "main_database.hh"

#include <stdio.h>
#include <unistd.h>

#include <memory>

#include "database_lock.hh"

namespace cmpntctl {
namespace {

constexpr int patience_ms = 1000;  // with those who open the file without the lock

struct Closer {
    void operator()(sqlite3 *db) const { sqlite3_close(db); }
    void operator()(sqlite3_stmt *statement) const { sqlite3_finalize(statement); }
};
using Database = std::unique_ptr<sqlite3, Closer>;
using Statement = std::unique_ptr<sqlite3_stmt, Closer>;

Failure sqlite_failure(sqlite3 *db) {
    const std::string what = std::string(main_database) + ": " + sqlite3_errmsg(db);
    switch (sqlite3_errcode(db)) {
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            return Failure(ExitCode::lock_busy, what,
                           "A program uses the file without the lock; try again when it is done.");
        case SQLITE_ERROR:  // a table or column that is not there
        case SQLITE_CORRUPT:
        case SQLITE_NOTADB:
            return Failure(ExitCode::damaged, what,
                           "See what is damaged: cmpntctl db check. Put the backup in its place: "
                           "cmpntctl db restore. Tables that were never made: cmpntctl init.");
        default:
            return Failure(ExitCode::failed, what,
                           "Start cmpntctl as the user of the upgrade system.");
    }
}

// Never creates it: it may have gone since we looked.
Database open_database() {
    sqlite3 *db = nullptr;
    const int result = sqlite3_open_v2(main_database, &db, SQLITE_OPEN_READWRITE, nullptr);
    Database database(db);
    if (result != SQLITE_OK) {
        throw sqlite_failure(db);
    }
    sqlite3_busy_timeout(db, patience_ms);
    return database;
}

Statement prepare(sqlite3 *db, const std::string &select, const std::vector<std::string> &values) {
    sqlite3_stmt *prepared = nullptr;
    if (sqlite3_prepare_v2(db, select.c_str(), -1, &prepared, nullptr) != SQLITE_OK) {
        throw sqlite_failure(db);
    }
    Statement statement(prepared);
    int number = 0;
    for (const std::string &value : values) {
        sqlite3_bind_text(prepared, ++number, value.data(), static_cast<int>(value.size()),
                          SQLITE_STATIC);
    }
    return statement;
}

}  // namespace

void require_main_database() {
    if (access(main_database, F_OK) != 0) {
        throw Failure(ExitCode::nothing, std::string("there is no database: ") + main_database,
                      "Make an empty one: cmpntctl init. Put the backup in its place: "
                      "cmpntctl db restore.");
    }
}

void read_rows(const Session &session, const std::string &select,
               const std::vector<std::string> &values,
               const std::function<void(sqlite3_stmt *)> &row) {
    require_main_database();
    const DatabaseLock lock(session);
    const Database database = open_database();
    const Statement statement = prepare(database.get(), select, values);
    int result;
    while ((result = sqlite3_step(statement.get())) == SQLITE_ROW) {
        row(statement.get());
    }
    if (result != SQLITE_DONE) {
        throw sqlite_failure(database.get());
    }
}

std::string column_text(sqlite3_stmt *row, int column) {
    const void *text = sqlite3_column_text(row, column);
    const int size = sqlite3_column_bytes(row, column);
    return text == nullptr
               ? ""
               : std::string(static_cast<const char *>(text), static_cast<size_t>(size));
}

Failure library_failure(const std::string &what) {
    return Failure(ExitCode::failed, what, "See what the library met: cmpntctl log show.");
}

void write_record(const Session &session, cmpnt_db_request &request, int32_t code,
                  const std::string &what) {
    wait_for_lock(session);
    // What the buffer holds would go where a command's output is redirected to.
    fflush(stdout);
    request.cmd = code;
    request.db_type = CMPNT_DB_MAIN;
    if (cmpnt_operate_pkg_database(&request, code) != 0) {
        throw library_failure(what);
    }
}

}  // namespace cmpntctl
