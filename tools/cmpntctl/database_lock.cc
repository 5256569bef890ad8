#include "database_lock.hh"

#include <errno.h>
#include <fcntl.h>
#include <libcmpnt_db.h>
#include <string.h>

#include "file_descriptor.hh"

namespace cmpntctl {
namespace {

// The bytes that SQLite's own locks are on.
constexpr off_t sqlite_pending_byte = 0x40000000;
constexpr off_t sqlite_lock_bytes = 512;

}  // namespace

DatabaseLock::DatabaseLock(const Session &session) {
    wait_for_lock(session);
    fd_ = cmpnt_open_db_flock();
    if (fd_ < 0) {
        throw Failure(ExitCode::failed,
                      std::string(lock_file) + " cannot be locked: " + strerror(errno),
                      "Start cmpntctl as the user of the upgrade system.");
    }
}

DatabaseLock::~DatabaseLock() { cmpnt_close(fd_); }

LockHolder transaction_holder(const std::string &path) {
    const FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    return file ? holder_of_lock(file.get(), sqlite_pending_byte, sqlite_lock_bytes) : LockHolder();
}

}  // namespace cmpntctl
