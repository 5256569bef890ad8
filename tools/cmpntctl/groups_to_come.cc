// Stands in for the groups of commands that are not there yet: a group's own file takes precedence.
#include "command.hh"
#include "device.hh"
#include "history.hh"

#define CMPNTCTL_TO_COME __attribute__((weak))

namespace cmpntctl {

CMPNTCTL_TO_COME void add_database_commands(CLI::App &, Session &) {}
CMPNTCTL_TO_COME void add_log_commands(CLI::App &, Session &) {}
CMPNTCTL_TO_COME void add_verify_commands(CLI::App &, Session &) {}
CMPNTCTL_TO_COME void add_file_commands(CLI::App &, Session &) {}
CMPNTCTL_TO_COME void add_device_commands(CLI::App &, Session &) {}

CMPNTCTL_TO_COME void record_history(const std::string &, Json, ExitCode) noexcept {}

CMPNTCTL_TO_COME int run_in_device(const std::string &, int, char **) {
    throw Failure(ExitCode::failed, "this build has no --device", "");
}

}  // namespace cmpntctl
