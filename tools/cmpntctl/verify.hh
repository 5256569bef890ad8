// The groups of commands about packages that are to be installed.
#ifndef CMPNTCTL_VERIFY_HH
#define CMPNTCTL_VERIFY_HH

#include "command.hh"

namespace cmpntctl {

void add_verify(CLI::App &app, Session &session);
void add_whitelist(CLI::App &app, Session &session);
void add_hotpatch(CLI::App &app, Session &session);

}  // namespace cmpntctl

#endif
