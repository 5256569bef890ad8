// A database file that is only looked at.
#ifndef CMPNTCTL_READ_ONLY_DATABASE_HH
#define CMPNTCTL_READ_ONLY_DATABASE_HH

#include <sqlite3.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace cmpntctl {

class SqliteError : public std::runtime_error {
public:
    SqliteError(int code, const std::string &what) : std::runtime_error(what), code_(code) {}
    int code() const { return code_; }

private:
    int code_;
};

// Neither makes a missing file nor rolls a journal back: the opening for reading refuses both.
class ReadOnlyDatabase {
public:
    using Row = std::vector<std::string>;  // NULL reads as ""

    explicit ReadOnlyDatabase(const std::string &path);
    ReadOnlyDatabase(const ReadOnlyDatabase &) = delete;
    ReadOnlyDatabase &operator=(const ReadOnlyDatabase &) = delete;
    ~ReadOnlyDatabase() { sqlite3_close(db_); }

    // With each "?" of the statement filled in.
    std::vector<Row> rows(const std::string &sql, const std::vector<std::string> &values = {});

private:
    sqlite3 *db_ = nullptr;
};

}  // namespace cmpntctl

#endif
