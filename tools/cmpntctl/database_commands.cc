// The groups "db" and "lock".
#include <memory>

#include "command.hh"
#include "database_check.hh"
#include "database_copy.hh"
#include "history.hh"
#include "lock.hh"

namespace cmpntctl {
namespace {

Report lock_status(bool check) {
    const LockHolder holder = lock_holder();
    Report report;
    report.data = {{"path", lock_file}, {"held", holder.held}, {"holder", Json()}};
    if (holder.held) {
        report.data["holder"] = {{"pid", holder.pid > 0 ? Json(holder.pid) : Json()},
                                 {"name", holder.program.empty() ? Json() : Json(holder.program)}};
    }
    report.text = std::string("The database lock ") + lock_file + " is " +
                  (holder.held ? "held by " + holder.name() : "free") + ".\n";
    report.code = check && holder.held ? ExitCode::lock_busy : ExitCode::done;
    return report;
}

// Done or failed, it is recorded; not what was never begun.
void run_and_record(Session &session, const char *command, Report (*run)(const Session &)) {
    try {
        const Report report = run(session);
        record_history(command, report.data, report.code);
        finish(session, command, report);
    } catch (const Failure &failure) {
        if (failure.code() == ExitCode::failed || failure.code() == ExitCode::damaged) {
            record_history(command, {{"failure", failure.what()}}, failure.code());
        }
        throw;
    }
}

void add_check(CLI::App &db, Session &session) {
    CLI::App *check = db.add_subcommand("check", "Tell whether the database files are damaged");
    auto quick = std::make_shared<bool>(false);
    check->add_flag("--quick", *quick,
                    "Leave out duplicate rows, the rows of the backup and the package files");
    check->footer(
        "Looks at the main file, its backup, the server and the auto-sync file, and changes\n"
        "nothing: file there and not empty, journal, SQLite's integrity check, tables and "
        "columns,\n"
        "states, duplicate rows, package files, backup equal to main.\n\n"
        "Exits with 4 when there is damage, with 2 when there is no database at all. Warnings and\n"
        "notes are no damage.\n\n"
        "Example:\n"
        "  cmpntctl db check --quick --json | jq -r '.findings[].text'");
    check->callback([&session, quick] {
        finish(session, "db check", check_databases(session, *quick ? Depth::quick : Depth::deep));
    });
}

void add_copies(CLI::App &db, Session &session) {
    CLI::App *backup = db.add_subcommand("backup", "Copy the main file over the backup");
    backup->footer(
        "Rolls back what a killed writer left half-done, and copies only a main file that is "
        "whole.\n"
        "The copy is not atomic: a power cut in the middle spoils the backup, not main.\n\n"
        "Example:\n"
        "  cmpntctl db backup");
    backup->callback([&session] { run_and_record(session, "db backup", back_up_database); });

    CLI::App *restore =
        db.add_subcommand("restore", "Put the backup in the place of the main file");
    restore->footer(
        "Refuses an empty or damaged backup. The copy is written beside main, synced and renamed: "
        "a\n"
        "power cut leaves the one or the other. Asks first; --yes does not.\n\n"
        "Example:\n"
        "  cmpntctl db check || cmpntctl db restore");
    restore->callback([&session] { run_and_record(session, "db restore", restore_database); });
}

void add_lock(CLI::App &app, Session &session) {
    CLI::App *lock = app.add_subcommand("lock", "The lock that database operations hold");
    lock->require_subcommand(1);
    lock->footer("Example:\n  cmpntctl lock status");
    CLI::App *status = lock->add_subcommand("status", "Tell which process holds the lock");
    auto check = std::make_shared<bool>(false);
    status->add_flag("--check", *check, "Exit with 3 while a process holds it");
    status->footer(
        "Looks, and takes nothing. Without --check it exits with 0, free or held.\n\n"
        "Example:\n"
        "  cmpntctl lock status --check || echo busy");
    status->callback([&session, check] { finish(session, "lock status", lock_status(*check)); });
}

}  // namespace

void add_database_commands(CLI::App &app, Session &session) {
    CLI::App *db = app.add_subcommand("db", "Check, back up and restore the database files");
    db->require_subcommand(1);
    db->footer("Example:\n  cmpntctl db check");
    add_check(*db, session);
    add_copies(*db, session);
    add_lock(app, session);
}

}  // namespace cmpntctl
