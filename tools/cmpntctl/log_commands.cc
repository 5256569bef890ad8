// The groups "log" and "history".
#include <errno.h>
#include <libcmpnt_db.h>
#include <poll.h>
#include <string.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <memory>

#include "command.hh"
#include "confirm.hh"
#include "history.hh"
#include "report.hh"
#include "table.hh"
#include "trace_files.hh"

namespace cmpntctl {
namespace {

struct LogOptions {
    size_t lines = 0;  // 0: all
    std::string kind;
    std::string thread;
};

template <typename Entry>
void keep_last(std::vector<Entry> &entries, size_t count) {
    if (count > 0 && entries.size() > count) {
        entries.erase(entries.begin(), entries.end() - static_cast<ptrdiff_t>(count));
    }
}

Report show(const Session &session, const LogOptions &options) {
    std::vector<TraceEntry> entries = TraceFiles(options.thread, options.kind).read_new();
    keep_last(entries, options.lines);
    Report report;
    report.data = {{"entries", Json::array()}};
    TracePrinter printer(session);
    for (const TraceEntry &entry : entries) {
        if (session.json) {
            report.data["entries"].push_back(to_json(entry));
        } else {
            report.text += printer.text(entry);
        }
    }
    if (entries.empty()) {
        report.text =
            "No such message in the trace files of " + std::string(trace_directory) + ".\n";
        report.code = ExitCode::nothing;
    }
    return report;
}

// A stream: with --json, each message is a document on a line of its own.
void print_followed(const Session &session, TracePrinter &printer,
                    const std::vector<TraceEntry> &entries) {
    std::string text;
    for (const TraceEntry &entry : entries) {
        if (session.json) {
            Json document = {{"schema_version", 1}, {"command", "log follow"}};
            document.update(to_json(entry));
            text += document.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
        } else {
            text += printer.text(entry);
        }
    }
    print(text);
}

// Returns when something may have been written, or whoever reads our output has gone. The time limit
// is for what no event tells: a directory that is not there yet.
bool wait_for_change(int notifier) {
    constexpr int patience_ms = 1000;
    inotify_add_watch(notifier, trace_directory, IN_MODIFY | IN_CREATE | IN_MOVED_TO);
    pollfd events[] = {{notifier, POLLIN, 0}, {STDOUT_FILENO, 0, 0}};
    poll(events, 2, patience_ms);
    char buffer[0x1000];
    while (read(notifier, buffer, sizeof(buffer)) > 0) {
        // Which file it was does not matter: all are looked at.
    }
    return (events[1].revents & (POLLERR | POLLHUP)) == 0;
}

void follow(const Session &session, const LogOptions &options) {
    const FileDescriptor notifier(inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    // Watched before the first look, so that nothing falls between the two.
    inotify_add_watch(notifier.get(), trace_directory, IN_MODIFY | IN_CREATE | IN_MOVED_TO);
    TraceFiles files(options.thread, options.kind);
    TracePrinter printer(session);
    std::vector<TraceEntry> entries = files.read_new();
    keep_last(entries, options.lines);
    do {
        print_followed(session, printer, entries);
        if (!wait_for_change(notifier.get())) {
            return;
        }
        entries = files.read_new();
    } while (true);
}

bool is_of_daemon(const std::string &name) { return name.rfind(".cmpnt_upgrade", 0) == 0; }

// The library removes the daemon's, and says so in our own trace file, which is gone by then.
Report clear(const Session &session) {
    const std::vector<std::string> names = trace_file_names();
    if (names.empty()) {
        throw Failure(ExitCode::nothing, std::string("no trace files in ") + trace_directory, "");
    }
    confirm(session, "Remove " + std::to_string(names.size()) + " trace files from " +
                         trace_directory + "?");
    Json removed = Json::array();
    for (const std::string &name : names) {
        const std::string path = std::string(trace_directory) + "/" + name;
        if (!is_of_daemon(name) && unlink(path.c_str()) != 0 && errno != ENOENT) {
            throw Failure(ExitCode::failed, path + " cannot be removed: " + strerror(errno),
                          "Start cmpntctl as the user of the upgrade system.");
        }
        removed.push_back(name);
    }
    cmpnt_debug_delete_log_file();
    return {
        "Removed " + std::to_string(names.size()) + " trace files from " + trace_directory + ".\n",
        {{"directory", trace_directory}, {"removed", std::move(removed)}}};
}

void run_clear(Session &session) {
    try {
        const Report report = clear(session);
        record_history("log clear", report.data, report.code);
        finish(session, "log clear", report);
    } catch (const Failure &failure) {
        if (failure.code() == ExitCode::failed) {
            record_history("log clear", {{"failure", failure.what()}}, failure.code());
        }
        throw;
    }
}

std::string text_or(const Json &entry, const char *member, const char *otherwise) {
    const auto found = entry.find(member);
    if (found == entry.end()) {
        return otherwise;
    }
    return found->is_string() ? found->get<std::string>()
                              : found->dump(-1, ' ', false, Json::error_handler_t::replace);
}

// A person wants to see what was asked for, not braces.
std::string details_of(const Json &entry) {
    std::string text;
    const auto details = entry.find("details");
    if (details == entry.end() || !details->is_object()) {
        return text_or(entry, "details", "");
    }
    for (const auto &item : details->items()) {
        text += (text.empty() ? "" : ", ") + item.key() + " " +
                text_or(*details, item.key().c_str(), "");
    }
    return text;
}

Report history(const Session &session, const std::string &operation, size_t lines) {
    std::vector<Json> entries = read_history();
    entries.erase(std::remove_if(entries.begin(), entries.end(),
                                 [&operation](const Json &entry) {
                                     return !operation.empty() &&
                                            text_or(entry, "operation", "") != operation;
                                 }),
                  entries.end());
    keep_last(entries, lines);
    Table table({"TIME", "USER", "OPERATION", "CODE", "DETAILS"});
    for (const Json &entry : entries) {
        table.add({text_or(entry, "time", "-"), text_or(entry, "user", "-"),
                   text_or(entry, "operation", "-"), text_or(entry, "code", "-"),
                   details_of(entry)});
    }
    if (entries.empty()) {
        return {
            "No such operation is recorded.\n", {{"entries", Json::array()}}, ExitCode::nothing};
    }
    return {table.text(session), {{"entries", entries}}};
}

void add_filters(CLI::App *command, const std::shared_ptr<LogOptions> &options) {
    command->add_option("--lines", options->lines, "The last so many messages; 0: all")
        ->type_name("N")
        ->capture_default_str();
    command->add_option("--kind", options->kind, "Only messages of this kind: error, trace, major")
        ->type_name("KIND");
    command->add_option("--thread", options->thread, "Only messages of the thread with this name")
        ->type_name("NAME");
}

void add_show(CLI::App &log, Session &session) {
    CLI::App *command = log.add_subcommand("show", "Print the messages, merged by time");
    auto options = std::make_shared<LogOptions>();
    options->lines = 100;
    add_filters(command, options);
    command->footer(
        "The output of the package manager is no trace, and is shown when it is asked for:\n"
        "--thread cmpnt_upgrade_opkg.\n\n"
        "Example:\n"
        "  cmpntctl log show --kind error --lines 20");
    command->callback(
        [&session, options] { finish(session, "log show", show(session, *options)); });
}

void add_follow(CLI::App &log, Session &session) {
    CLI::App *command = log.add_subcommand("follow", "Print messages as they come, until stopped");
    auto options = std::make_shared<LogOptions>();
    options->lines = 10;
    add_filters(command, options);
    command->footer(
        "With --json, each message is a document on a line of its own.\n\n"
        "Example:\n"
        "  cmpntctl log follow --thread cmpnt_upgrade");
    command->callback([&session, options] { follow(session, *options); });
}

void add_clear(CLI::App &log, Session &session) {
    CLI::App *command = log.add_subcommand("clear", "Remove the trace files");
    command->footer(
        "Removes \".NAME.log\" and \".NAME.log_bak\" of every thread, and with the upgrade "
        "daemon's\n"
        "(\".cmpnt_upgrade...\") the output of the package manager. A line in .cmpntctl.log says "
        "so\n"
        "afterwards. Asks first; --yes does not.\n\n"
        "Example:\n"
        "  cmpntctl log clear --yes");
    command->callback([&session] { run_clear(session); });
}

void add_history(CLI::App &app, Session &session) {
    CLI::App *command = app.add_subcommand("history", "List the operations that cmpntctl made");
    auto operation = std::make_shared<std::string>();
    auto lines = std::make_shared<size_t>(50);
    command->add_option("--operation", *operation, "Only these: \"db restore\", rollback ...")
        ->type_name("NAME");
    command->add_option("--lines", *lines, "The last so many; 0: all")
        ->type_name("N")
        ->capture_default_str();
    command->footer(
        "Each is a line of JSON in /var/cache/opkg/.cmpntctl_history; a file of 256 KiB is "
        "renamed\n"
        "to .cmpntctl_history_bak. CODE is the exit code that the operation ended with.\n\n"
        "Example:\n"
        "  cmpntctl history --operation rollback");
    command->callback([&session, operation, lines] {
        finish(session, "history", history(session, *operation, *lines));
    });
}

}  // namespace

void add_log_commands(CLI::App &app, Session &session) {
    CLI::App *log = app.add_subcommand("log", "The trace files of the library and its hosts");
    log->require_subcommand(1);
    log->footer("Example:\n  cmpntctl log show");
    add_show(*log, session);
    add_follow(*log, session);
    add_clear(*log, session);
    add_history(app, session);
}

}  // namespace cmpntctl
