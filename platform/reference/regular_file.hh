// Files as the verification service reads them: regular ones only, since a pipe would keep it waiting.
#ifndef CMPNT_REFERENCE_REGULAR_FILE_HH
#define CMPNT_REFERENCE_REGULAR_FILE_HH

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

namespace reference {

class RegularFile {
public:
    // Any file but a regular one counts as one that cannot be opened.
    explicit RegularFile(const char *path)
        : fd_(open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC)) {
        struct stat status;
        missing_ = fd_ < 0 && errno == ENOENT;
        if (fd_ >= 0 && (fstat(fd_, &status) != 0 || !S_ISREG(status.st_mode))) {
            close(fd_);
            fd_ = -1;
        }
    }
    RegularFile(const RegularFile &) = delete;
    RegularFile &operator=(const RegularFile &) = delete;
    ~RegularFile() {
        if (fd_ >= 0) {
            close(fd_);
        }
    }

    bool is_missing() const { return missing_; }

    // Hands the contents to take(block, size) piece by piece, until it returns false. False then,
    // and when the file cannot be read.
    template <typename Take>
    bool read_blocks(Take take) {
        char block[16384];
        for (;;) {
            const ssize_t size = read(fd_, block, sizeof(block));
            if (size < 0 && errno == EINTR) {
                continue;
            }
            if (size <= 0) {
                return size == 0;
            }
            if (!take(block, static_cast<size_t>(size))) {
                return false;
            }
        }
    }

    // The whole of a file of at most this size.
    bool read_all(std::string &text, size_t limit) {
        return read_blocks([&](const char *block, size_t size) {
            text.append(block, size);
            return text.size() <= limit;
        });
    }

private:
    int fd_;
    bool missing_;
};

}  // namespace reference

#endif
