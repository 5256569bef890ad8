#include "database_check.hh"

#include <sys/stat.h>

#include <algorithm>
#include <fstream>

#include "database_lock.hh"
#include "files.hh"
#include "read_only_database.hh"
#include "table.hh"

namespace cmpntctl {
namespace {

constexpr size_t paths_shown = 100;

enum class Backup { equal, different, not_compared };

// What was found while the lock was held.
struct Check {
    std::vector<Inspection> files;  // main and backup first
    Backup backup = Backup::not_compared;

    Inspection &main() { return files[0]; }
    Inspection &copy() { return files[1]; }
    bool is_any_present() const {
        return std::any_of(files.begin(), files.end(),
                           [](const Inspection &found) { return found.is_present; });
    }
};

std::string rows_missing(ReadOnlyDatabase &database, const std::string &table, const char *in,
                         const char *from) {
    return database.rows("select count(*) from (select * from " + std::string(in) + "." + table +
                         " except select * from " + from + "." + table + ")")[0][0];
}

// The backup follows each change of the upgrade records, and of nothing else: other rows that differ
// are no sign of trouble.
void compare_rows(Check &check) {
    ReadOnlyDatabase database(check.main().file.path);
    database.rows("attach ? as copy", {check.copy().file.path});
    for (const TableLayout &table : check.main().file.tables) {
        const std::string only_main = rows_missing(database, table.name, "main", "copy");
        const std::string only_copy = rows_missing(database, table.name, "copy", "main");
        if (only_main != "0" || only_copy != "0") {
            const bool is_followed = table.name == "pkg_upgrade_table";
            check.copy().add("backup", is_followed ? "warning" : "note",
                             table.name + " differs from main: " + only_main +
                                 " rows are in main alone, " + only_copy + " in the backup alone");
        }
    }
}

void compare_backup(Check &check, Depth depth) {
    if (!check.main().is_present || !check.copy().is_present) {
        return;
    }
    const bool equal = files_are_equal(check.main().file.path, check.copy().file.path);
    check.backup = equal ? Backup::equal : Backup::different;
    if (equal || !check.main().is_usable() || !check.copy().is_usable()) {
        return;
    }
    const size_t found_before = check.copy().findings.size();
    if (depth == Depth::deep) {
        compare_rows(check);
    }
    if (check.copy().findings.size() == found_before) {
        check.copy().add("backup", "note", "is not the same file as main, byte for byte");
    }
}

Check look(const Session &session, Depth depth) {
    const DatabaseLock lock(session);
    Check check;
    for (const DatabaseFile &file : database_files()) {
        check.files.push_back(inspect(file, depth));
    }
    compare_backup(check, depth);
    return check;
}

// After the lock is released: thousands of files may be asked for.
void look_for_packages(Inspection &found) {
    size_t missing = 0;
    for (const std::string &path : found.package_paths) {
        struct stat status;
        if (stat(path.c_str(), &status) == 0) {
            continue;
        }
        if (missing++ < paths_shown) {
            found.add("package", "warning", "no package file " + printable(path));
        }
    }
    if (missing > paths_shown) {
        found.add("package", "warning",
                  "and " + std::to_string(missing - paths_shown) + " more package files");
    }
}

std::string verdict(const Inspection &found) {
    if (found.is_damaged()) {
        return "damaged";
    }
    return found.is_present ? "good" : "absent";
}

// What helps, by what is left that is good.
std::string advice(Check &check) {
    const bool has_backup = check.copy().is_present && check.copy().is_usable();
    if (check.main().is_damaged() && check.main().is_usable()) {
        return "Next: put the rows right with cmpntctl record, or delete and add them again.\n";
    }
    if (!check.main().is_damaged()) {
        return !check.copy().is_usable()
                   ? "Next: cmpntctl db backup   # main is good: copy it again\n"
                   : "Next: see to the file that is named; main is good.\n";
    }
    const auto &findings = check.main().findings;
    const bool has_journal = std::any_of(findings.begin(), findings.end(), [](const Finding &one) {
        return one.kind == "journal" && one.severity == "damage";
    });
    if (has_journal) {
        return "Next: cmpntctl db backup   # rolls the journal back, looks again, then copies\n";
    }
    return has_backup ? "Next: cmpntctl db restore   # the backup is good\n"
                      : "Next: save the files and ask support: the backup is of no help.\n";
}

std::string text_of(const Session &session, Check &check, bool damaged) {
    Table files({"FILE", "STATE", "BYTES", "PATH"});
    std::string findings;
    for (const Inspection &found : check.files) {
        files.add({found.file.name, verdict(found),
                   found.is_present ? std::to_string(found.bytes) : "-", found.file.path});
        for (const Finding &finding : found.findings) {
            findings += finding.severity + ": " + finding.file + ": " + finding.text + "\n";
        }
    }
    std::string text = files.text(session);
    if (check.backup == Backup::equal) {
        text += "The backup equals main.\n";
    }
    text += (findings.empty() ? "" : "\n") + findings;
    return text + (damaged ? "\nDamage was found.\n" + advice(check) : "\nNo damage was found.\n");
}

Json data_of(const Check &check, Depth depth, bool damaged) {
    Json files = Json::array(), findings = Json::array();
    for (const Inspection &found : check.files) {
        files.push_back({{"file", found.file.name},
                         {"path", found.file.path},
                         {"state", verdict(found)},
                         {"bytes", found.is_present ? Json(found.bytes) : Json()},
                         {"contents_checked", found.was_read}});
        for (const Finding &one : found.findings) {
            findings.push_back({{"file", one.file},
                                {"kind", one.kind},
                                {"severity", one.severity},
                                {"text", one.text}});
        }
    }
    return {{"depth", depth == Depth::quick ? "quick" : "deep"},
            {"damaged", damaged},
            {"backup_equals_main",
             check.backup == Backup::not_compared ? Json() : Json(check.backup == Backup::equal)},
            {"files", std::move(files)},
            {"findings", std::move(findings)}};
}

}  // namespace

Report check_databases(const Session &session, Depth depth) {
    Check check = look(session, depth);
    if (!check.is_any_present()) {
        throw Failure(ExitCode::nothing, "there is no database: " + check.main().file.path,
                      "Lay one out: cmpntctl init");
    }
    look_for_packages(check.main());
    const bool damaged = std::any_of(check.files.begin(), check.files.end(),
                                     [](const Inspection &found) { return found.is_damaged(); });
    return {text_of(session, check, damaged), data_of(check, depth, damaged),
            damaged ? ExitCode::damaged : ExitCode::done};
}

}  // namespace cmpntctl
