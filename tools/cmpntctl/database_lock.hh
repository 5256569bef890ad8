// Holding the database lock, and seeing the locks of those who do not.
#ifndef CMPNTCTL_DATABASE_LOCK_HH
#define CMPNTCTL_DATABASE_LOCK_HH

#include <string>

#include "command.hh"
#include "lock.hh"

namespace cmpntctl {

// Waits as long as the session says, and holds the lock until it goes.
class DatabaseLock {
public:
    explicit DatabaseLock(const Session &session);
    DatabaseLock(const DatabaseLock &) = delete;
    DatabaseLock &operator=(const DatabaseLock &) = delete;
    ~DatabaseLock();

private:
    int fd_;
};

// The process that reads the SQLite file or has a transaction on it. Not while this process has it
// open: looking would drop its locks.
LockHolder transaction_holder(const std::string &path);

}  // namespace cmpntctl

#endif
