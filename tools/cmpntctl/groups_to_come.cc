// Stands in for the groups of commands that are not there yet: a group's own file takes precedence.
#include "command.hh"
#include "history.hh"

#define CMPNTCTL_TO_COME __attribute__((weak))

namespace cmpntctl {

CMPNTCTL_TO_COME void add_database_commands(CLI::App &, Session &) {}
CMPNTCTL_TO_COME void add_log_commands(CLI::App &, Session &) {}

CMPNTCTL_TO_COME void record_history(const std::string &, Json, ExitCode) noexcept {}

}  // namespace cmpntctl
