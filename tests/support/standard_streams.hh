// Keeps a test's standard output and error, whatever the library leaves on their descriptors.
#ifndef CMPNT_TESTS_STANDARD_STREAMS_HH
#define CMPNT_TESTS_STANDARD_STREAMS_HH

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

class StandardStreams {
public:
    // Above every number that a test expects to be the first free one.
    StandardStreams() : stdout_(fcntl(1, F_DUPFD, 200)), stderr_(fcntl(2, F_DUPFD, 200)) {}
    ~StandardStreams() {
        put_back();
        close(stdout_);
        close(stderr_);
    }
    StandardStreams(const StandardStreams &) = delete;
    StandardStreams &operator=(const StandardStreams &) = delete;

    void put_back() {
        fflush(stdout);
        fflush(stderr);
        dup2(stdout_, 1);
        dup2(stderr_, 2);
    }

    bool are_in_place() const { return same(stdout_, 1) && same(stderr_, 2); }

private:
    static bool same(int a, int b) {
        struct stat first, second;
        return fstat(a, &first) == 0 && fstat(b, &second) == 0 && first.st_dev == second.st_dev &&
               first.st_ino == second.st_ino;
    }

    int stdout_;
    int stderr_;
};

#endif
