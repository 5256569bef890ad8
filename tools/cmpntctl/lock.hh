// Who holds the database lock.
#ifndef CMPNTCTL_LOCK_HH
#define CMPNTCTL_LOCK_HH

#include <sys/types.h>

#include <string>

namespace cmpntctl {

constexpr char lock_file[] = "/tmp/.cmpnt_db_lock";

struct LockHolder {
    bool held = false;    // by another process
    int pid = 0;          // 0: of a process that we cannot see
    std::string program;  // empty: not known

    std::string name() const;  // "process 4711 (upgrade_server)"
};

// Who keeps others from locking these bytes of an open file; a length of 0 means all of it.
LockHolder holder_of_lock(int fd, off_t start, off_t length);

// Looks, takes nothing and creates nothing. Not to be called while this process holds the lock:
// looking closes a descriptor of the file, and with it such a lock.
LockHolder lock_holder();

}  // namespace cmpntctl

#endif
