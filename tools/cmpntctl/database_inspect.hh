// What can be found wrong in one database file, by looking alone.
#ifndef CMPNTCTL_DATABASE_INSPECT_HH
#define CMPNTCTL_DATABASE_INSPECT_HH

#include <sys/types.h>

#include <string>
#include <vector>

#include "database_files.hh"

namespace cmpntctl {

// A finding of severity "damage" means that records are lost, or cannot be told apart; "warning"
// that something else is not as it should be; "note" that it may well be.
struct Finding {
    std::string file;      // "main"
    std::string kind;      // "missing", "state" ...: the manual lists them
    std::string severity;  // "damage", "warning", "note"
    std::string text;
};

enum class Depth {
    quick,  // structure and states
    deep    // rows against each other as well, and the package files
};

struct Inspection {
    DatabaseFile file;
    bool is_present = false;
    off_t bytes = 0;
    bool was_read = false;  // its tables and rows were looked at
    std::vector<Finding> findings;
    std::vector<std::string> package_paths;  // that the file names, each once

    bool is_damaged() const;
    // Rows alone are wrong: the file can be worked with, and they can be put right.
    bool is_usable() const;
    void add(const char *kind, const char *severity, const std::string &text);
};

// Under the database lock, or a writer may be met half-way. Throws a Failure when the file cannot be
// read, or is locked by a process that does not know the database lock.
Inspection inspect(const DatabaseFile &file, Depth depth);

// "FILE-journal", which SQLite would roll back at the next opening for writing.
std::string journal_path(const DatabaseFile &file);
bool has_stale_journal(const DatabaseFile &file);

}  // namespace cmpntctl

#endif
