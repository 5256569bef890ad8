// Who holds the database lock.
#ifndef CMPNTCTL_LOCK_HH
#define CMPNTCTL_LOCK_HH

#include <string>

namespace cmpntctl {

constexpr char lock_file[] = "/tmp/.cmpnt_db_lock";

struct LockHolder {
    bool held = false;    // by another process
    int pid = 0;          // 0: of a process that we cannot see
    std::string program;  // empty: not known

    std::string name() const;  // "process 4711 (upgrade_server)"
};

// Looks, takes nothing and creates nothing. Not to be called while this process holds the lock:
// looking closes a descriptor of the file, and with it such a lock.
LockHolder lock_holder();

}  // namespace cmpntctl

#endif
