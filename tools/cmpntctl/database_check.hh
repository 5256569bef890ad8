// "db check": is the database damaged?
#ifndef CMPNTCTL_DATABASE_CHECK_HH
#define CMPNTCTL_DATABASE_CHECK_HH

#include "command.hh"
#include "database_inspect.hh"

namespace cmpntctl {

Report check_databases(const Session &session, Depth depth);

}  // namespace cmpntctl

#endif
