#include "read_only_database.hh"

#include <memory>

namespace cmpntctl {
namespace {

constexpr int patience_ms = 2000;  // with a writer that does not know the database lock

std::string column_text(sqlite3_stmt *statement, int column) {
    const auto *text = static_cast<const char *>(sqlite3_column_blob(statement, column));
    const int length = sqlite3_column_bytes(statement, column);
    return text == nullptr ? "" : std::string(text, static_cast<size_t>(length));
}

}  // namespace

ReadOnlyDatabase::ReadOnlyDatabase(const std::string &path) {
    const int result = sqlite3_open_v2(path.c_str(), &db_, SQLITE_OPEN_READONLY, nullptr);
    if (result != SQLITE_OK) {
        const std::string message = sqlite3_errmsg(db_);
        sqlite3_close(db_);
        throw SqliteError(result, message);
    }
    sqlite3_busy_timeout(db_, patience_ms);
}

std::vector<ReadOnlyDatabase::Row> ReadOnlyDatabase::rows(const std::string &sql,
                                                          const std::vector<std::string> &values) {
    sqlite3_stmt *raw = nullptr;
    int result = sqlite3_prepare_v2(db_, sql.c_str(), -1, &raw, nullptr);
    const std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt *)> statement(raw, sqlite3_finalize);
    for (size_t i = 0; i < values.size(); i++) {
        sqlite3_bind_text(raw, static_cast<int>(i) + 1, values[i].c_str(), -1, SQLITE_STATIC);
    }
    std::vector<Row> all;
    while (result == SQLITE_OK && (result = sqlite3_step(raw)) == SQLITE_ROW) {
        Row row;
        for (int column = 0; column < sqlite3_column_count(raw); column++) {
            row.push_back(column_text(raw, column));
        }
        all.push_back(std::move(row));
        result = SQLITE_OK;
    }
    if (result != SQLITE_DONE) {
        throw SqliteError(result, sqlite3_errmsg(db_));
    }
    return all;
}

}  // namespace cmpntctl
