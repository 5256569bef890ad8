// Looking at the database lock before a call that would wait for it.
#include "lock.hh"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <thread>

#include "command.hh"

namespace cmpntctl {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr milliseconds nap(20);
constexpr seconds patience(1);  // before a person is told what we wait for

std::string program_of(int pid) {
    std::string name;
    std::getline(std::ifstream("/proc/" + std::to_string(pid) + "/comm"), name);
    return name;
}

[[noreturn]] void give_up(const Session &session, const LockHolder &holder) {
    throw Failure(ExitCode::lock_busy,
                  "the database lock is held by " + holder.name() + ", for more than " +
                      std::to_string(session.lock_timeout) + " s",
                  "Try again when it is done, or wait longer: --lock-timeout SECONDS.");
}

}  // namespace

std::string LockHolder::name() const {
    if (pid <= 0) {
        return "a process that is not visible from here";
    }
    return "process " + std::to_string(pid) + (program.empty() ? "" : " (" + program + ")");
}

LockHolder holder_of_lock(int fd, off_t start, off_t length) {
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = start;
    lock.l_len = length;
    LockHolder holder;
    holder.held = fcntl(fd, F_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
    if (holder.held && lock.l_pid > 0) {
        holder.pid = lock.l_pid;
        holder.program = program_of(lock.l_pid);
    }
    return holder;
}

LockHolder lock_holder() {
    const int fd = open(lock_file, O_RDONLY | O_CLOEXEC);
    if (fd == -1) {
        if (errno == ENOENT) {
            return {};
        }
        throw Failure(ExitCode::failed,
                      std::string(lock_file) + " cannot be opened: " + strerror(errno),
                      "Start cmpntctl as the user of the upgrade system.");
    }
    const LockHolder holder = holder_of_lock(fd, 0, 0);
    close(fd);
    return holder;
}

void wait_for_lock(const Session &session) {
    const Clock::time_point start = Clock::now();
    bool is_told = false;
    for (LockHolder holder = lock_holder(); holder.held; holder = lock_holder()) {
        const Clock::duration waited = Clock::now() - start;
        if (session.lock_timeout >= 0 && waited >= seconds(session.lock_timeout)) {
            give_up(session, holder);
        }
        if (!is_told && waited >= patience) {
            fprintf(stderr, "cmpntctl: waiting for the database lock, held by %s\n",
                    holder.name().c_str());
            is_told = true;
        }
        std::this_thread::sleep_for(nap);
    }
}

}  // namespace cmpntctl
