// Standard output and error into the capture file while a command runs, and back.
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include "common/guard.hh"
#include "common/log.hh"
#include "common/standard_streams.hh"

namespace {

constexpr char capture_path[] = "/var/cache/opkg/.opkg_redirect";

// While debugging, output stays on the terminal.
bool output_stays() { return __atomic_load_n(&g_cmpnt_dbg_level, __ATOMIC_RELAXED) != 0; }

// Appending, since two descriptors write to it side by side.
int open_capture_file() {
    return open(capture_path, O_RDWR | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0777);
}

bool make_capture_directory(const char *function) {
    char directory[CMPNT_PATH_SIZE];
    if (cmpnt_memcpy(directory, capture_path, sizeof(directory),
                     static_cast<int32_t>(strlen(capture_path))) != 0) {
        CMPNT_LOG_AS(log_error, function, "cmpnt_memcpy fail, str(%s)\n", capture_path);
        return false;
    }
    get_path_exclude_file_name(directory);
    cmpnt_mkdir(directory);
    return true;
}

// What the host has printed so far belongs to where the stream led until now.
void flush_stream_on(int fd) {
    if (fd == STDOUT_FILENO) {
        fflush(stdout);
    } else if (fd == STDERR_FILENO) {
        fflush(stderr);
    }
}

}  // namespace

int32_t cmpnt_std_redirect_to_file(int32_t fd) {
    // Opens before it makes the directory, which is there but for the first time.
    Descriptor capture(open_capture_file());
    if (!capture) {
        if (!make_capture_directory(__func__)) {
            return -1;
        }
        capture.reset(open_capture_file());
    }
    if (!capture) {
        CMPNT_LOG(log_error, "open error, name(%s), error(%s)\n", capture_path, strerror(errno));
        return -1;
    }
    // Clear of the other stream, and not for the commands to inherit.
    Descriptor copy(fcntl(fd, F_DUPFD_CLOEXEC, first_free_descriptor));
    if (!copy) {
        CMPNT_LOG(log_error, "dup fail, name(%s), error(%s)\n", capture_path, strerror(errno));
        return -1;
    }
    flush_stream_on(fd);
    if (dup2(capture.get(), fd) < 0) {
        CMPNT_LOG(log_error, "dup2 fail, name(%s), error(%s)\n", capture_path, strerror(errno));
        return -1;
    }
    if (capture.get() == fd) {
        // The stream was closed, and its number was the first free one. Commands inherit it.
        fcntl(fd, F_SETFD, 0);
        capture.release();
    }
    return copy.release();
}

int32_t cmpnt_install_log_redirect(int32_t *saved_stdout, int32_t *saved_stderr) {
    if (saved_stdout == nullptr || saved_stderr == nullptr) {
        return -1;
    }
    *saved_stdout = -1;
    *saved_stderr = -1;
    if (output_stays()) {
        return 0;
    }
    *saved_stdout = cmpnt_std_redirect_to_file(STDOUT_FILENO);
    if (*saved_stdout == -1) {
        CMPNT_LOG(log_error, "std_redirect_to_file fail, fd(%d).\n", STDOUT_FILENO);
        return -1;
    }
    *saved_stderr = cmpnt_std_redirect_to_file(STDERR_FILENO);
    if (*saved_stderr == -1) {
        CMPNT_LOG(log_error, "std_redirect_to_file fail, fd(%d).\n", STDERR_FILENO);
        return -1;
    }
    return 0;
}

int32_t cmpnt_revert_std(int32_t saved_fd, int32_t target_fd) {
    if (saved_fd < 0) {
        CMPNT_LOG(log_trace, "param save_fd(%d) is error\n", saved_fd);
        return 0;
    }
    Descriptor copy(saved_fd);
    flush_stream_on(target_fd);
    if (dup2(saved_fd, target_fd) < 0) {
        CMPNT_LOG(log_error, "dup2 fail, target_fd(%d), save_fd(%d), error(%s)\n", target_fd,
                  saved_fd, strerror(errno));
        return -1;
    }
    return 0;
}

int32_t cmpnt_install_log_restore(int32_t saved_stdout, int32_t saved_stderr) {
    if (output_stays()) {
        return 0;
    }
    if (cmpnt_revert_std(saved_stdout, STDOUT_FILENO) != 0) {
        CMPNT_LOG(log_error, "cmpnt_revert_std fail, fd(%d).\n", STDOUT_FILENO);
    }
    if (cmpnt_revert_std(saved_stderr, STDERR_FILENO) != 0) {
        CMPNT_LOG(log_error, "cmpnt_revert_std fail, fd(%d).\n", STDERR_FILENO);
        return -1;
    }
    return 0;
}
