// How a command's answer is printed.
#ifndef CMPNTCTL_REPORT_HH
#define CMPNTCTL_REPORT_HH

#include "command.hh"

namespace cmpntctl {

// The document of a command that has too much to say to keep it as objects: members is JSON text,
// `"name": value, ...`, and is printed as it is.
void finish_with_members(Session &session, const char *command, const std::string &members,
                         ExitCode code);

// Prints and flushes; throws a Failure when standard output does not take it.
void print(const std::string &text);

}  // namespace cmpntctl

#endif
