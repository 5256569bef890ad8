#include "database_inspect.hh"

#include <ctype.h>
#include <errno.h>
#include <libcmpnt_db.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>

#include "database_lock.hh"
#include "read_only_database.hh"
#include "table.hh"

namespace cmpntctl {
namespace {

constexpr size_t findings_shown = 100;  // of one kind in one table

std::string quoted(const std::string &name) { return "\"" + name + "\""; }

std::string joined(const std::vector<std::string> &texts, const char *between) {
    std::string all;
    for (const std::string &text : texts) {
        all += (all.empty() ? "" : between) + text;
    }
    return all;
}

std::string plural(size_t count, const char *one) {
    return std::to_string(count) + " " + one + (count == 1 ? "" : "s");
}

// Only the first byte tells whether a journal is to be rolled back: SQLite zeroes it when it is done
// with a journal that it does not delete.
bool journal_is_hot(const std::string &path) {
    std::ifstream journal(path, std::ios::binary);
    const int first = journal.get();
    return first != EOF && first != 0;
}

bool exists(const std::string &path) {
    struct stat status;
    return lstat(path.c_str(), &status) == 0;
}

// Whether the file may be read as it is.
bool inspect_journal(Inspection &found) {
    const std::string path = journal_path(found.file);
    if (!exists(path)) {
        return true;
    }
    const LockHolder holder = transaction_holder(found.file.path);
    if (holder.held) {
        found.add("busy", "note",
                  "is being written by " + holder.name() + ", past the database lock");
        return true;
    }
    if (!journal_is_hot(path)) {
        found.add("journal", "warning", "an empty journal was left behind: " + path);
        return true;
    }
    found.add("journal", "damage",
              "a writer ended half-way: the stale journal " + path +
                  " is to be rolled back, and the contents cannot be relied on before");
    return false;
}

// In write-ahead mode even a reader makes files beside the database.
bool inspect_format(Inspection &found) {
    char header[20] = "";
    std::ifstream(found.file.path, std::ios::binary).read(header, sizeof(header));
    if (memcmp(header, "SQLite format 3", 16) != 0) {
        found.add("format", "damage", "is no SQLite database");
        return false;
    }
    if (header[18] == 2 || header[19] == 2) {
        found.add("format", "damage",
                  "is in write-ahead mode, which the library never uses: not looked into");
        return false;
    }
    return true;
}

void inspect_integrity(Inspection &found, ReadOnlyDatabase &database, Depth depth) {
    const char *check =
        depth == Depth::quick ? "pragma quick_check(100)" : "pragma integrity_check(100)";
    for (const auto &row : database.rows(check)) {
        if (row[0] != "ok") {
            found.add("integrity", "damage", printable(row[0]));
        }
    }
}

std::vector<std::string> columns_of(ReadOnlyDatabase &database, const std::string &table) {
    std::vector<std::string> columns;
    for (const auto &row : database.rows("pragma table_info(" + quoted(table) + ")")) {
        std::string type = row[2];
        std::transform(type.begin(), type.end(), type.begin(),
                       [](unsigned char letter) { return tolower(letter); });
        columns.push_back(row[1] + " " + type);
    }
    return columns;
}

// The library inserts by position: the order counts.
bool inspect_columns(Inspection &found, ReadOnlyDatabase &database, const TableLayout &table) {
    const std::vector<std::string> columns = columns_of(database, table.name);
    if (columns == table.columns) {
        return true;
    }
    if (columns.empty()) {
        found.add("table", found.file.is_needed ? "damage" : "warning", table.name + " is missing");
        return false;
    }
    for (size_t i = 0; i < std::max(columns.size(), table.columns.size()); i++) {
        const std::string is = i < columns.size() ? columns[i] : "";
        const std::string must_be = i < table.columns.size() ? table.columns[i] : "";
        if (is != must_be) {
            found.add("column", "damage",
                      table.name + ": column " + std::to_string(i + 1) + " is " +
                          (is.empty() ? "missing" : quoted(printable(is))) + ", and must be " +
                          (must_be.empty() ? "absent" : quoted(must_be)));
            break;  // the rest is shifted
        }
    }
    return false;
}

using Rows = std::vector<ReadOnlyDatabase::Row>;

template <typename Describe>
void add_rows(Inspection &found, const char *kind, const TableLayout &table, const Rows &rows,
              Describe describe) {
    for (size_t i = 0; i < rows.size() && i < findings_shown; i++) {
        found.add(kind, "damage", table.name + ": " + printable(describe(rows[i])));
    }
    if (rows.size() > findings_shown) {
        found.add(kind, "damage",
                  table.name + ": and " + plural(rows.size() - findings_shown, "more row"));
    }
}

void inspect_states(Inspection &found, ReadOnlyDatabase &database, const TableLayout &table) {
    if (table.state.empty()) {
        return;
    }
    const std::string name = "printf('%s %s', " + joined(table.key, ", ") + ")";
    const Rows rows =
        database.rows("select " + name + ", quote(" + table.state + ") from " + table.name +
                      " where typeof(" + table.state + ") <> 'integer' or " + table.state +
                      " not between 0 and " + std::to_string(CMPNT_STATE_INVALID_DEACTIVE_COLD));
    add_rows(found, "state", table, rows, [&](const ReadOnlyDatabase::Row &row) {
        return row[0] + " has the state " + row[1] + ", which there is not";
    });
}

void inspect_duplicates(Inspection &found, ReadOnlyDatabase &database, const TableLayout &table) {
    if (table.key.empty()) {
        return;
    }
    const std::string key = joined(table.key, ", ");
    const Rows rows = database.rows("select count(*), " + key + " from " + table.name +
                                    " group by " + key + " having count(*) > 1");
    add_rows(found, "duplicate", table, rows, [](const ReadOnlyDatabase::Row &row) {
        const std::vector<std::string> names(row.begin() + 1, row.end());
        return joined(names, " ") + " is there " + row[0] + " times";
    });
}

void collect_package_paths(Inspection &found, ReadOnlyDatabase &database,
                           const TableLayout &table) {
    if (table.path.empty()) {
        return;
    }
    for (const auto &row : database.rows("select distinct " + table.path + " from " + table.name +
                                         " where " + table.path + " <> ''")) {
        found.package_paths.push_back(row[0]);
    }
}

void inspect_contents(Inspection &found, Depth depth) {
    ReadOnlyDatabase database(found.file.path);
    inspect_integrity(found, database, depth);
    found.was_read = true;
    for (const TableLayout &table : found.file.tables) {
        if (!inspect_columns(found, database, table)) {
            continue;
        }
        inspect_states(found, database, table);
        if (depth == Depth::deep) {
            inspect_duplicates(found, database, table);
            collect_package_paths(found, database, table);
        }
    }
}

// What SQLite says of a file that it cannot make sense of is a finding; the rest is no fault of the
// file.
void note_sqlite_error(Inspection &found, const SqliteError &error) {
    switch (error.code() & 0xFF) {
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            throw Failure(
                ExitCode::lock_busy,
                found.file.path + ": another process writes to it, past the database lock",
                "Try again when it is done; \"fuser " + found.file.path + "\" names it.");
        case SQLITE_NOMEM:
        case SQLITE_CANTOPEN:
        case SQLITE_FULL:
            throw Failure(ExitCode::failed, found.file.path + ": " + error.what(),
                          "See that it can be read, and that there is memory.");
        default:
            found.add("integrity", "damage", printable(std::string(error.what())));
    }
}

void inspect_absent(Inspection &found, bool is_main) {
    if (is_main) {
        found.add("missing", "damage", "the file is not there: " + found.file.path);
    } else if (found.file.is_needed) {
        found.add("missing", "warning", "there is no backup yet: " + found.file.path);
    } else {
        found.add("missing", "note", "not in use: " + found.file.path);
    }
}

}  // namespace

bool Inspection::is_damaged() const {
    return std::any_of(findings.begin(), findings.end(),
                       [](const Finding &finding) { return finding.severity == "damage"; });
}

bool Inspection::is_usable() const {
    return std::all_of(findings.begin(), findings.end(), [](const Finding &finding) {
        return finding.severity != "damage" || finding.kind == "state" ||
               finding.kind == "duplicate";
    });
}

void Inspection::add(const char *kind, const char *severity, const std::string &text) {
    findings.push_back({file.name, kind, severity, text});
}

std::string journal_path(const DatabaseFile &file) { return file.path + "-journal"; }

bool has_stale_journal(const DatabaseFile &file) {
    return exists(journal_path(file)) && !transaction_holder(file.path).held;
}

Inspection inspect(const DatabaseFile &file, Depth depth) {
    Inspection found;
    found.file = file;
    struct stat status;
    if (stat(file.path.c_str(), &status) != 0) {
        if (errno != ENOENT && errno != ENOTDIR) {
            throw Failure(ExitCode::failed, file.path + ": " + strerror(errno),
                          "Run it as a user who may read the file.");
        }
        inspect_absent(found, file.name == "main");
        return found;
    }
    found.is_present = true;
    found.bytes = status.st_size;
    if (!S_ISREG(status.st_mode)) {
        found.add("format", "damage", "is no file");
    } else if (access(file.path.c_str(), R_OK) != 0) {
        throw Failure(ExitCode::failed, file.path + ": " + strerror(errno),
                      "Run it as a user who may read the file.");
    } else if (status.st_size == 0) {
        found.add("empty", file.is_needed ? "damage" : "warning", "the file has 0 bytes");
    } else if (inspect_journal(found) && inspect_format(found)) {
        try {
            inspect_contents(found, depth);
        } catch (const SqliteError &error) {
            note_sqlite_error(found, error);
        }
    }
    return found;
}

}  // namespace cmpntctl
