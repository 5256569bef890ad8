// A descriptor that is closed when it goes.
#ifndef CMPNTCTL_FILE_DESCRIPTOR_HH
#define CMPNTCTL_FILE_DESCRIPTOR_HH

#include <unistd.h>

#include <utility>

namespace cmpntctl {

class FileDescriptor {
public:
    explicit FileDescriptor(int fd = -1) : fd_(fd) {}
    FileDescriptor(FileDescriptor &&other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    FileDescriptor &operator=(FileDescriptor &&other) noexcept {
        std::swap(fd_, other.fd_);
        return *this;
    }
    FileDescriptor(const FileDescriptor &) = delete;
    FileDescriptor &operator=(const FileDescriptor &) = delete;
    ~FileDescriptor() {
        if (fd_ >= 0) {
            close(fd_);
        }
    }

    explicit operator bool() const { return fd_ >= 0; }
    int get() const { return fd_; }

private:
    int fd_;
};

}  // namespace cmpntctl

#endif
