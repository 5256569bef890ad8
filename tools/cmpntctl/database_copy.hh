// "db backup" and "db restore".
#ifndef CMPNTCTL_DATABASE_COPY_HH
#define CMPNTCTL_DATABASE_COPY_HH

#include "command.hh"

namespace cmpntctl {

// Both refuse what would put a damaged or an empty file in the place of a good one.
Report back_up_database(const Session &session);
Report restore_database(const Session &session);

}  // namespace cmpntctl

#endif
