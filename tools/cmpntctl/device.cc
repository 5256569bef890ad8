#include "device.hh"

#include <stdlib.h>
#include <unistd.h>

#include <memory>

#include "command.hh"
#include "device_root.hh"
#include "isolation.hh"

namespace cmpntctl {
namespace {

using Words = std::vector<std::string>;

struct DeviceArguments {
    std::string directory;
    Words command;
};

Report make_device(const std::string &directory) {
    const Words folders = create_device_root(directory);
    Report report;
    report.data["directory"] = directory;
    report.data["folders"] = folders;
    report.text = "made the device root " + directory +
                  "\nrun commands in it with: cmpntctl device run " + directory +
                  " -- COMMAND\n                     or: cmpntctl --device " + directory +
                  " COMMAND\n";
    return report;
}

// A command's own exit code may be any.
void run(Session &session, const std::string &directory, const Words &command) {
    session.code = static_cast<ExitCode>(run_isolated(open_device_root(directory), command));
}

void run_shell(Session &session, const std::string &directory) {
    const char *chosen = getenv("SHELL");
    const std::string shell =
        chosen != nullptr && access(chosen, X_OK) == 0 && !is_private(chosen) ? chosen : "/bin/sh";
    if (session.is_terminal) {
        fprintf(stderr, "/var, /data, /tmp and /opt are those in %s now; leave with: exit\n",
                directory.c_str());
    }
    run(session, directory, {shell});
}

void add_new(CLI::App &device, Session &session,
             const std::shared_ptr<DeviceArguments> &arguments) {
    CLI::App *command = device.add_subcommand("new", "Lay out a device root in a folder");
    command->add_option("DIR", arguments->directory, "An empty folder, or one to be made")
        ->required();
    command->footer("Example:\n  cmpntctl device new my-device");
    command->callback([&session, arguments] {
        finish(session, "device new", make_device(arguments->directory));
    });
}

void add_run(CLI::App &device, Session &session,
             const std::shared_ptr<DeviceArguments> &arguments) {
    CLI::App *command =
        device.add_subcommand("run", "Run a command with the fixed paths in a device root");
    command->add_option("DIR", arguments->directory, "A folder that \"device new\" made")
        ->required();
    command->add_option("COMMAND", arguments->command, "The command and its arguments, behind --")
        ->required();
    command->footer(
        "/var, /data, /tmp and /opt are the device root's, the rest of the machine is\n"
        "read-only. The exit code is the command's, and so is what it prints, also with\n"
        "--json. It takes bubblewrap and user namespaces (or root).\n\n"
        "Example:\n  cmpntctl device run my-device -- ls -l /data/cmpnt/opkg");
    command->callback(
        [&session, arguments] { run(session, arguments->directory, arguments->command); });
}

void add_shell(CLI::App &device, Session &session,
               const std::shared_ptr<DeviceArguments> &arguments) {
    CLI::App *command = device.add_subcommand("shell", "Start a shell in a device root");
    command->add_option("DIR", arguments->directory, "A folder that \"device new\" made")
        ->required();
    command->footer(
        "The shell is that of $SHELL, and its exit code is this command's.\n\n"
        "Example:\n  cmpntctl device shell my-device");
    command->callback([&session, arguments] { run_shell(session, arguments->directory); });
}

}  // namespace

int run_in_device(const std::string &directory, int count, char **arguments) {
    Words command = {show_own_program().path};
    command.insert(command.end(), arguments, arguments + count);
    return run_isolated(open_device_root(directory), command);
}

void add_device_commands(CLI::App &app, Session &session) {
    CLI::App *device =
        app.add_subcommand("device", "Try the system in a folder, away from this machine's paths");
    device->require_subcommand(1);
    device->footer(
        "A device root is a folder with /var, /data, /tmp and /opt of a device. Any command\n"
        "of cmpntctl works in one with --device DIR.\n\n"
        "Example:\n  cmpntctl device new my-device\n  cmpntctl --device my-device init");
    const auto arguments = std::make_shared<DeviceArguments>();
    add_new(*device, session, arguments);
    add_run(*device, session, arguments);
    add_shell(*device, session, arguments);
}

}  // namespace cmpntctl
