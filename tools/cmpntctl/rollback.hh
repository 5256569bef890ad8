// The command "rollback": a plan, carried out.
#ifndef CMPNTCTL_ROLLBACK_HH
#define CMPNTCTL_ROLLBACK_HH

#include <string>

#include "command.hh"

namespace cmpntctl {

// With an install_dir the chosen files are put there as PACKAGE.ipk, and those of removed packages
// are taken away; without one the records alone are brought in step, for the package manager to follow.
void run_rollback(Session &session, const std::string &patch, const std::string &install_dir);

}  // namespace cmpntctl

#endif
