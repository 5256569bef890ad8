// Asking before something is changed.
#ifndef CMPNTCTL_CONFIRM_HH
#define CMPNTCTL_CONFIRM_HH

#include <string>

#include "command.hh"

namespace cmpntctl {

// Puts the question to the person at the terminal, on standard error, and throws a Failure unless the
// answer is yes: nobody there to ask (usage), or another answer (nothing). With --yes it asks nothing.
void confirm(const Session &session, const std::string &question);

}  // namespace cmpntctl

#endif
