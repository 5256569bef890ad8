// Records of a fixed size over stream sockets, without any framing.
#include <errno.h>
#include <string.h>
#include <unistd.h>

#include "common/log.hh"
#include "common/pause.hh"

namespace {

// Of one call: progress does not give them back.
constexpr int send_retries = 6;
constexpr int recv_retries = 2;

constexpr int32_t no_more_retries = -3;

// A record comes in one read, unless its reads bring more than that.
constexpr ssize_t whole_record_read = 8192;

bool is_passing(int error) { return error == EINTR || error == EAGAIN; }

// Whether the write or read can be tried again; if so, the second is over.
bool wait_to_retry(int &retries) {
    if (retries == 0) {
        return false;
    }
    retries--;
    pause_for_a_second();
    return true;
}

}  // namespace

int32_t send_data(int32_t fd, const void *data, uint32_t length) {
    if (data == nullptr) {
        CMPNT_LOG(log_error, "input param is null.\n");
        return -1;
    }
    const char *rest = static_cast<const char *>(data);
    for (int retries = send_retries; length > 0;) {
        const ssize_t written = write(fd, rest, length);
        const int error = errno;
        if (written > 0) {
            rest += written;
            length -= static_cast<uint32_t>(written);
        } else if (written == 0) {
            CMPNT_LOG(log_error, "write_ret is 0, errno(%d).\n", error);
            return 0;
        } else if (!is_passing(error)) {
            CMPNT_LOG(log_error, "write fail, errno(%d), error(%s).\n", error, strerror(error));
            return -1;
        } else {
            CMPNT_LOG(log_error, "write errno is EINTR or EAGAIN, error(%s), sock_fd(%d).\n",
                      strerror(error), fd);
            if (!wait_to_retry(retries)) {
                return -1;
            }
        }
    }
    return 0;
}

int32_t recv_data(int32_t fd, void *buffer, int32_t length) {
    if (buffer == nullptr) {
        CMPNT_LOG(log_error, "input param is null.\n");
        return -1;
    }
    if (length <= 0) {
        return 0;
    }
    size_t missing = static_cast<size_t>(length);
    char *place = static_cast<char *>(memset(buffer, 0, missing));
    for (int retries = recv_retries;;) {
        const ssize_t got = read(fd, place, missing);
        const int error = errno;
        if (got > 0) {
            place += got;
            missing -= static_cast<size_t>(got);
            if (missing == 0) {
                return 0;
            }
            if (got <= whole_record_read) {
                CMPNT_LOG(log_error, "recv data maybe error, no continue read, quit\n");
                return 0;
            }
        } else if (got == 0) {
            CMPNT_LOG(log_error, "client connect maybe closed, errno(%d), fd(%d)\n", error, fd);
            return -1;
        } else if (!is_passing(error)) {
            CMPNT_LOG(log_error, "recv fail, error(%s), errno(%d), fd(%d)\n", strerror(error),
                      error, fd);
            return -1;
        } else {
            CMPNT_LOG(log_error, "read fail, error(%s), errno(%d), sock_fd(%d).\n", strerror(error),
                      error, fd);
            if (!wait_to_retry(retries)) {
                return no_more_retries;
            }
        }
    }
}
