// What every command of cmpntctl is made of: it is told the session, and answers with a report or
// throws a Failure.
#ifndef CMPNTCTL_COMMAND_HH
#define CMPNTCTL_COMMAND_HH

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

namespace cmpntctl {

using Json = nlohmann::ordered_json;

// The table in the manual.
enum class ExitCode {
    done = 0,
    failed = 1,
    nothing = 2,  // nothing to do, or not found
    lock_busy = 3,
    damaged = 4,
    usage = 64,
};

// Printed to standard error as "cmpntctl: WHAT" and "  NEXT".
class Failure : public std::runtime_error {
public:
    Failure(ExitCode code, const std::string &what, std::string next)
        : std::runtime_error(what), code_(code), next_(std::move(next)) {}
    ExitCode code() const { return code_; }
    const std::string &next() const { return next_; }

private:
    ExitCode code_;
    std::string next_;
};

// What a command has to say: one of the two is printed, by --json.
struct Report {
    std::string text;  // for people, with its newlines
    Json data;  // for programs: the members of the document beside schema_version and command
    ExitCode code = ExitCode::done;
};

// The options of every command.
struct Session {
    bool json = false;
    bool yes = false;          // asks nothing
    int lock_timeout = -1;     // seconds; below 0: as long as it takes
    std::string device;        // a device root in a folder; empty: this machine
    bool is_terminal = false;  // standard output is one
    bool color = false;        // a terminal, and no NO_COLOR
    int width = 80;            // of the terminal, in columns

    ExitCode code = ExitCode::done;  // what the command came to
};

// Prints the report of a command, "db check" for example, and keeps its exit code.
void finish(Session &session, const char *command, const Report &report);

// Before a call that takes the database lock: throws a Failure with lock_busy when another process
// still holds it after the session's time. Waits no longer than that.
void wait_for_lock(const Session &session);

// Each group of commands enters itself.
void add_record_commands(CLI::App &app,
                         Session &session);  // list show packages plan rollback record init
void add_database_commands(CLI::App &app, Session &session);  // db lock
void add_log_commands(CLI::App &app, Session &session);       // log history
void add_verify_commands(CLI::App &app, Session &session);    // verify whitelist hotpatch
void add_file_commands(CLI::App &app, Session &session);      // version control md5 space
void add_device_commands(CLI::App &app, Session &session);    // device

}  // namespace cmpntctl

#endif
