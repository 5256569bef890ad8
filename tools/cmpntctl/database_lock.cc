#include "database_lock.hh"

#include <errno.h>
#include <fcntl.h>
#include <libcmpnt_db.h>
#include <string.h>

#include <fstream>

#include "file_descriptor.hh"

namespace cmpntctl {
namespace {

// The bytes that SQLite's own locks are on.
constexpr off_t sqlite_pending_byte = 0x40000000;
constexpr off_t sqlite_lock_bytes = 512;

std::string program_of(pid_t pid) {
    std::ifstream file("/proc/" + std::to_string(pid) + "/comm");
    std::string name;
    std::getline(file, name);
    return name;
}

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
    LockHolder holder;
    const FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = sqlite_pending_byte;
    lock.l_len = sqlite_lock_bytes;
    if (file && fcntl(file.get(), F_GETLK, &lock) == 0 && lock.l_type != F_UNLCK) {
        holder.held = true;
        holder.pid = lock.l_pid > 0 ? lock.l_pid : 0;
        holder.program = holder.pid > 0 ? program_of(holder.pid) : "";
    }
    return holder;
}

}  // namespace cmpntctl
