// cmpntctl: the command line, and how each failure ends.
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <exception>
#include <vector>

#include "command.hh"
#include "device.hh"
#include "libcmpnt_db.h"
#include "platform/reference/reference_platform.h"

namespace cmpntctl {
namespace {

constexpr char footer[] =
    "The global options may stand behind the command, too.\n"
    "Exit codes: 0 done, 1 failed, 2 nothing to do or not found, 3 lock busy,\n"
    "            4 damage found, 64 wrong usage.\n\n"
    "Example:\n"
    "  cmpntctl plan rollback smu_security   # what would happen; changes nothing\n"
    "  cmpntctl list --state active --json";

// Thrown when the command line is understood, before any command runs.
struct DeviceWanted {};

// The library redirects descriptors 1 and 2, and keeps its lock on another: all three are to be open.
void open_standard_streams() {
    int fd;
    do {
        fd = open("/dev/null", O_RDWR);
    } while (fd >= 0 && fd <= STDERR_FILENO);
    close(fd);
}

// What the platform has to say is not the tool's output; a failed open leaves nothing to print on.
void silence_platform() {
    FILE *nowhere = fopen("/dev/null", "we");
    reference_platform_set_terminal(nowhere != nullptr ? nowhere : stderr);
    reference_platform_set_system_log(nowhere != nullptr ? nowhere : stderr);
}

int terminal_width() {
    const char *columns = getenv("COLUMNS");
    const int wanted = columns != nullptr ? atoi(columns) : 0;
    if (wanted > 0) {
        return wanted;
    }
    winsize size = {};
    return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

bool is_set(const char *variable) {
    const char *value = getenv(variable);
    return value != nullptr && value[0] != '\0';
}

void look_at_terminal(Session &session) {
    session.is_terminal = isatty(STDOUT_FILENO) == 1;
    const char *kind = getenv("TERM");
    const bool is_dumb = kind != nullptr && strcmp(kind, "dumb") == 0;
    session.color = session.is_terminal && !is_set("NO_COLOR") && !is_dumb;
    session.width = terminal_width();
}

void add_global_options(CLI::App &app, Session &session) {
    app.add_flag("--json", session.json, "One JSON document on standard output");
    app.add_flag("-y,--yes", session.yes, "Ask nothing");
    app.add_option("--lock-timeout", session.lock_timeout,
                   "Wait so long for the database lock; without it, as long as it takes")
        ->type_name("SECONDS")
        ->check(CLI::NonNegativeNumber);
    app.add_option("--device", session.device, "Work in the device root in this folder")
        ->type_name("DIR");
    app.set_version_flag("-V,--version",
                         std::string("cmpntctl ") + cmpnt_db_version() + " (libcmpnt_db)");
}

void add_commands(CLI::App &app, Session &session) {
    add_record_commands(app, session);
    add_database_commands(app, session);
    add_log_commands(app, session);
    add_verify_commands(app, session);
    add_file_commands(app, session);
    add_device_commands(app, session);
}

// The arguments but for --device, up to a "--": what stands behind it belongs to another program.
std::vector<char *> without_device(int count, char **arguments) {
    std::vector<char *> kept;
    bool is_ours = true;
    for (int i = 0; i < count; i++) {
        is_ours = is_ours && strcmp(arguments[i], "--") != 0;
        if (is_ours && strcmp(arguments[i], "--device") == 0) {
            i++;
        } else if (!is_ours || strncmp(arguments[i], "--device=", 9) != 0) {
            kept.push_back(arguments[i]);
        }
    }
    kept.push_back(nullptr);
    return kept;
}

int fail(ExitCode code, const char *what, const std::string &next) {
    fprintf(stderr, "cmpntctl: %s\n", what);
    if (!next.empty()) {
        fprintf(stderr, "  %s\n", next.c_str());
    }
    return static_cast<int>(code);
}

// The command that the line had come to when it was found wrong: "cmpntctl record add".
std::string command_of(const CLI::App &app) {
    std::string command = app.get_name();
    for (const CLI::App *sub : app.get_subcommands()) {
        command += " " + command_of(*sub);
    }
    return command;
}

int run(CLI::App &app, Session &session, int argc, char **argv) {
    try {
        app.parse(argc, argv);
        return static_cast<int>(session.code);
    } catch (const DeviceWanted &) {
        std::vector<char *> arguments = without_device(argc - 1, argv + 1);
        return run_in_device(session.device, static_cast<int>(arguments.size()) - 1,
                             arguments.data());
    } catch (const CLI::Success &success) {  // --help and --version
        return app.exit(success);
    } catch (const CLI::ParseError &error) {
        return fail(ExitCode::usage, error.what(), "Try: " + command_of(app) + " --help");
    }
}

int guarded_run(CLI::App &app, Session &session, int argc, char **argv) {
    try {
        return run(app, session, argc, argv);
    } catch (const Failure &failure) {
        return fail(failure.code(), failure.what(), failure.next());
    } catch (const std::exception &error) {
        return fail(ExitCode::failed, error.what(), "");
    }
}

}  // namespace
}  // namespace cmpntctl

int main(int argc, char **argv) {
    using namespace cmpntctl;
    open_standard_streams();
    silence_platform();
    Session session;
    look_at_terminal(session);
    CLI::App app("The operator's tool for the component database of the upgrade system.",
                 "cmpntctl");
    app.fallthrough();
    app.require_subcommand(1);
    add_global_options(app, session);
    add_commands(app, session);
    // Last: commands that have no example of their own would take this one over.
    app.footer(footer);
    app.parse_complete_callback([&session] {
        if (!session.device.empty()) {
            throw DeviceWanted();
        }
    });
    return guarded_run(app, session, argc, argv);
}
