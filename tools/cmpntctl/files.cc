#include "files.hh"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <iterator>

#include "command.hh"
#include "file_descriptor.hh"

namespace cmpntctl {
namespace {

[[noreturn]] void fail(const std::string &what) {
    throw Failure(ExitCode::failed, what + ": " + strerror(errno),
                  "Nothing was changed. See that the directory is there, writable and has room.");
}

std::string directory_of(const std::string &path) { return path.substr(0, path.rfind('/') + 1); }

// ".NAME.SUFFIX" in the same directory: one name, so that what a killed process left is found.
std::string beside(const std::string &path, const char *suffix) {
    const std::string directory = directory_of(path);
    return directory + "." + path.substr(directory.size()) + suffix;
}

void write_all(int fd, const char *data, size_t size, const std::string &path) {
    while (size > 0) {
        const ssize_t written = write(fd, data, size);
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            fail(path + " cannot be written");
        }
        data += written;
        size -= static_cast<size_t>(written);
    }
}

void copy_bytes(int from, int to, const std::string &source, const std::string &path) {
    char buffer[0x10000];
    for (;;) {
        const ssize_t count = read(from, buffer, sizeof(buffer));
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            fail(source + " cannot be read");
        }
        if (count == 0) {
            return;
        }
        write_all(to, buffer, static_cast<size_t>(count), path);
    }
}

void write_copy(const std::string &source, const std::string &target, const std::string &path) {
    const FileDescriptor from(open(source.c_str(), O_RDONLY | O_CLOEXEC));
    struct stat status;
    if (!from || (stat(target.c_str(), &status) != 0 && fstat(from.get(), &status) != 0)) {
        fail(source + " cannot be read");
    }
    const FileDescriptor to(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!to) {
        fail(path + " cannot be made");
    }
    copy_bytes(from.get(), to.get(), source, path);
    if (fchown(to.get(), status.st_uid, status.st_gid) != 0) {
        // An ordinary user's file stays the user's.
    }
    if (fchmod(to.get(), status.st_mode & 0777) != 0 || fsync(to.get()) != 0) {
        fail(path + " cannot be written");
    }
}

void sync_path(const std::string &path, int flags) {
    const FileDescriptor file(open(path.c_str(), flags | O_RDONLY | O_CLOEXEC));
    if (!file || fsync(file.get()) != 0) {
        fail(path + " cannot be synced");
    }
}

}  // namespace

bool files_are_equal(const std::string &a, const std::string &b) {
    std::ifstream first(a, std::ios::binary), second(b, std::ios::binary);
    using Bytes = std::istreambuf_iterator<char>;
    return first && second && std::equal(Bytes(first), Bytes(), Bytes(second), Bytes());
}

void sync_file(const std::string &path) { sync_path(path, 0); }

void sync_directory_of(const std::string &path) { sync_path(directory_of(path), O_DIRECTORY); }

Replacement::Replacement(const std::string &source, const std::string &target)
    : target_(target), path_(beside(target, ".new")) {
    if (unlink(path_.c_str()) != 0 && errno != ENOENT) {
        fail(path_ + " is in the way");
    }
    try {
        write_copy(source, target, path_);
    } catch (...) {
        unlink(path_.c_str());
        throw;
    }
}

Replacement::~Replacement() {
    if (!path_.empty()) {
        unlink(path_.c_str());
    }
}

void Replacement::take_place() {
    if (rename(path_.c_str(), target_.c_str()) != 0) {
        fail(target_ + " cannot be replaced");
    }
    path_.clear();
}

MovedAside::MovedAside(const std::string &path) : path_(path), aside_(beside(path, ".old")) {
    if (rename(path_.c_str(), aside_.c_str()) != 0) {
        if (errno != ENOENT) {
            fail(path_ + " cannot be moved aside");
        }
        aside_.clear();
    }
}

MovedAside::~MovedAside() {
    if (!aside_.empty()) {
        rename(aside_.c_str(), path_.c_str());
    }
}

void MovedAside::remove() {
    if (!aside_.empty()) {
        unlink(aside_.c_str());
        aside_.clear();
    }
}

}  // namespace cmpntctl
