// Database files seen from outside the library. None of the calls here is wrapped or counted.
#ifndef CMPNT_TESTS_SQLITE_HH
#define CMPNT_TESTS_SQLITE_HH

#include <sqlite3.h>

#include <string>
#include <vector>

inline const std::string main_db = "/var/lib/opkg/cmpnt_upgrade.db3";
inline const std::string server_db = "/tmp/opkg/server/.cmpnt_server.db3";
inline const std::string backup_db = "/data/cmpnt/opkg/cmpnt_upgrade_backup.db3";
inline const std::string auto_sync_db = "/var/lib/opkg/cmpnt_auto_sync.db3";

using SqlRow = std::vector<std::string>;

// A connection of one's own, which notes the statements that it is given. It opens the file when it
// is first used.
class Connection {
public:
    explicit Connection(const std::string &path) : path_(path) {}
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;
    ~Connection() { sqlite3_close_v2(db_); }

    sqlite3 *db() {
        if (db_ == nullptr) {
            sqlite3_open_v2(path_.c_str(), &db_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE,
                            nullptr);
            sqlite3_trace_v2(db_, SQLITE_TRACE_STMT, note, &statements_);
        }
        return db_;
    }

    // Rows of one statement; NULL reads as "NULL", an error is the only row's only value.
    std::vector<SqlRow> run(const std::string &sql) {
        std::vector<SqlRow> rows;
        sqlite3_stmt *statement = nullptr;
        int result = sqlite3_prepare_v2(db(), sql.c_str(), -1, &statement, nullptr);
        while (result == SQLITE_OK && (result = sqlite3_step(statement)) == SQLITE_ROW) {
            SqlRow row;
            for (int i = 0; i < sqlite3_column_count(statement); i++) {
                const void *text = sqlite3_column_text(statement, i);
                row.push_back(text == nullptr ? "NULL" : static_cast<const char *>(text));
            }
            rows.push_back(row);
            result = SQLITE_OK;
        }
        if (result != SQLITE_OK && result != SQLITE_DONE) {
            rows = {{sqlite3_errmsg(db_)}};
        }
        sqlite3_finalize(statement);
        return rows;
    }

    // Statements since the last call, as they were given.
    std::vector<std::string> statements() {
        std::vector<std::string> all;
        all.swap(statements_);
        return all;
    }

private:
    static int note(unsigned, void *statements, void *, void *text) {
        static_cast<std::vector<std::string> *>(statements)
            ->push_back(static_cast<const char *>(text));
        return 0;
    }

    std::string path_;
    sqlite3 *db_ = nullptr;
    std::vector<std::string> statements_;
};

inline std::vector<SqlRow> sql(const std::string &path, const std::string &statement) {
    return Connection(path).run(statement);
}

#endif
