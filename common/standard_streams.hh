// What a descriptor that must stay as it is needs: a number that no redirection touches.
#ifndef CMPNT_COMMON_STANDARD_STREAMS_HH
#define CMPNT_COMMON_STANDARD_STREAMS_HH

#include <fcntl.h>
#include <unistd.h>

#include "common/guard.hh"

inline constexpr int first_free_descriptor = STDERR_FILENO + 1;

// The same file under a number that is none of the standard streams', closing the former; -1 when
// there is none. A host with closed standard streams gets their numbers from open(), and a command
// run would put its redirection over them. Call it before a record lock is taken on the file: the
// close would release it.
inline int clear_of_standard_streams(int fd, int duplicate = F_DUPFD_CLOEXEC) {
    if (fd < 0 || fd >= first_free_descriptor) {
        return fd;
    }
    Descriptor former(fd);
    return fcntl(fd, duplicate, first_free_descriptor);
}

#endif
