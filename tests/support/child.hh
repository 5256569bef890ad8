// A second process beside the test, for locks and for what is left of a killed one.
#ifndef CMPNT_TESTS_CHILD_HH
#define CMPNT_TESTS_CHILD_HH

#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <initializer_list>

// Child child([](Child &self) { ...; self.say(); self.wait_for_word(); return 0; });
//
// The work runs in the child, and what it returns is the exit status. say() and wait_for_word() are
// the child's, the others the test's. The child ends with the scope at the latest.
class Child {
public:
    template <typename Work>
    explicit Child(Work work) {
        if (pipe(up_) != 0 || pipe(down_) != 0) {
            return;
        }
        pid_ = fork();
        if (pid_ == 0) {
            _exit(work(*this));
        }
    }
    Child(const Child &) = delete;
    Child &operator=(const Child &) = delete;
    ~Child() {
        kill();
        for (int fd : {up_[0], up_[1], down_[0], down_[1]}) {
            close(fd);
        }
    }

    void say() { put(up_[1]); }
    void wait_for_word() { take(down_[0]); }

    // Whether the child says something within this time.
    bool says(int milliseconds = 10000) {
        pollfd reader = {up_[0], POLLIN, 0};
        return poll(&reader, 1, milliseconds) == 1 && take(up_[0]);
    }
    void tell() { put(down_[1]); }

    void kill() {
        if (pid_ > 0) {
            ::kill(pid_, SIGKILL);
            wait();
        }
    }

    // The exit status; -1 when a signal ended the child.
    int wait() {
        int status = -1;
        waitpid(pid_, &status, 0);
        pid_ = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private:
    static void put(int fd) {
        if (write(fd, "x", 1) != 1) {
            _exit(99);
        }
    }
    static bool take(int fd) {
        char byte;
        return read(fd, &byte, 1) == 1;
    }

    int up_[2] = {-1, -1};
    int down_[2] = {-1, -1};
    pid_t pid_ = -1;
};

// What the work returns, as the exit status of a process of its own.
template <typename Work>
int in_child(Work work) {
    return Child([work](Child &) { return work(); }).wait();
}

#endif
