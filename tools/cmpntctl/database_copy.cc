#include "database_copy.hh"

#include <libcmpnt_db.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include "confirm.hh"
#include "database_inspect.hh"
#include "database_lock.hh"
#include "files.hh"
#include "table.hh"

namespace cmpntctl {
namespace {

std::string first_damage(const Inspection &found) {
    for (const Finding &finding : found.findings) {
        if (finding.severity == "damage" && finding.kind != "state" &&
            finding.kind != "duplicate") {
            return finding.text;
        }
    }
    return "";
}

// Rows that are wrong are no reason: what has them is still the best that there is.
void refuse_damaged(const Inspection &found, const std::string &next) {
    if (!found.is_usable()) {
        throw Failure(ExitCode::damaged,
                      found.file.path + " is damaged, and not copied: " + first_damage(found),
                      next);
    }
}

void refuse_absent(const DatabaseFile &file, const std::string &next) {
    if (access(file.path.c_str(), F_OK) != 0) {
        throw Failure(ExitCode::nothing, "there is no " + file.path, next);
    }
}

void refuse_while_in_use(const DatabaseFile &file) {
    const LockHolder holder = transaction_holder(file.path);
    if (holder.held) {
        throw Failure(ExitCode::lock_busy,
                      file.path + " is in use, past the database lock, by " + holder.name(),
                      "Try again when it is done.");
    }
}

// An opening for writing rolls a journal back when it first reads, as each call of the library does.
bool roll_back_journal(const DatabaseFile &file) {
    if (!has_stale_journal(file)) {
        return false;
    }
    sqlite3 *database = nullptr;
    if (cmpnt_open_sqlite(&database, CMPNT_DB_MAIN) == 0) {
        sqlite3_exec(database, "select count(*) from sqlite_master", nullptr, nullptr, nullptr);
        sqlite3_close(database);
    }
    return true;
}

// A journal beside the copy belongs to the file that was there before: SQLite would play it back
// into the new one.
bool remove_journal(const DatabaseFile &file) { return unlink(journal_path(file).c_str()) == 0; }

void copy_to_backup(const DatabaseFile &main, const DatabaseFile &backup) {
    if (cmpnt_backup_sqlite_db_to_data() != 0 || !files_are_equal(main.path, backup.path)) {
        throw Failure(ExitCode::failed, backup.path + " could not be written, and may be damaged",
                      "See that its directory is there and has room, then run it again.");
    }
    sync_file(backup.path);
    sync_directory_of(backup.path);
}

std::string age_and_size(const DatabaseFile &file) {
    struct stat status;
    if (stat(file.path.c_str(), &status) != 0) {
        return "absent";
    }
    struct tm local = {};
    localtime_r(&status.st_mtime, &local);
    char text[40] = "";
    strftime(text, sizeof(text), "%Y-%m-%d %H:%M:%S", &local);
    return std::to_string(status.st_size) + " bytes of " + text;
}

std::string question(const DatabaseFile &main, const DatabaseFile &backup) {
    return "Replace  " + main.path + " (" + age_and_size(main) + ")\n     by  " + backup.path +
           " (" + age_and_size(backup) + ")?\nWhat main has beyond the backup is lost.";
}

constexpr char damaged_backup_next[] = "Main is as it was. See: cmpntctl db check";

// Nobody is asked about what cannot be done; the lock is not held while a person thinks.
void inspect_backup(const Session &session, const DatabaseFile &backup) {
    const DatabaseLock lock(session);
    refuse_damaged(inspect(backup, Depth::quick), damaged_backup_next);
}

// The journal goes first, for a power cut between the two: the new file must not meet the old one's
// journal, while main without its journal can still be restored once more.
bool replace_main(const DatabaseFile &main, const DatabaseFile &backup) {
    Replacement copy(backup.path, main.path);
    if (!files_are_equal(copy.path(), backup.path)) {
        throw Failure(ExitCode::failed, copy.path() + " is not what was written to it",
                      "Nothing was changed. Look for faults of the disk in the kernel's log.");
    }
    MovedAside journal(journal_path(main));
    MovedAside write_ahead(main.path + "-wal");
    sync_directory_of(main.path);
    copy.take_place();
    const bool had_journal = journal.is_there();
    journal.remove();
    write_ahead.remove();
    sync_directory_of(main.path);
    return had_journal;
}

}  // namespace

Report back_up_database(const Session &session) {
    const DatabaseFile main = main_file(), backup = backup_file();
    const DatabaseLock lock(session);
    refuse_absent(main, "A lost main file is put back with: cmpntctl db restore");
    refuse_while_in_use(main);
    const bool rolled_back = roll_back_journal(main);
    const Inspection found = inspect(main, Depth::deep);
    refuse_damaged(found, "The backup is as it was. See: cmpntctl db check");
    remove_journal(backup);
    copy_to_backup(main, backup);
    return {std::string(rolled_back ? "Rolled back the write that had ended half-way.\n" : "") +
                "Copied " + main.path + "\n    to " + backup.path + " (" +
                std::to_string(found.bytes) + " bytes).\n",
            {{"from", main.path},
             {"to", backup.path},
             {"bytes", found.bytes},
             {"journal_rolled_back", rolled_back}}};
}

Report restore_database(const Session &session) {
    const DatabaseFile main = main_file(), backup = backup_file();
    refuse_absent(backup, "There is nothing to restore from.");
    inspect_backup(session, backup);
    confirm(session, question(main, backup));
    const DatabaseLock lock(session);
    refuse_while_in_use(main);
    refuse_while_in_use(backup);
    const Inspection found = inspect(backup, Depth::deep);
    refuse_damaged(found, damaged_backup_next);
    if (!has_stale_journal(main) && files_are_equal(main.path, backup.path)) {
        throw Failure(ExitCode::nothing, "main and backup are the same already", "");
    }
    const bool had_journal = replace_main(main, backup);
    return {"Restored " + main.path + "\n    from " + backup.path + " (" +
                std::to_string(found.bytes) + " bytes).\n" +
                (had_journal ? "Removed the stale journal of the file that was there.\n" : ""),
            {{"from", backup.path},
             {"to", main.path},
             {"bytes", found.bytes},
             {"journal_removed", had_journal}}};
}

}  // namespace cmpntctl
