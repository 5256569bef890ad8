#include "trace_errors.hh"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <sstream>

namespace cmpntctl {
namespace {

std::string trace_path() {
    char name[16] = {};  // what the kernel has room for
    prctl(PR_GET_NAME, name);
    return std::string("/var/cache/opkg/debug/.") + name + ".log";
}

FileDescriptor open_to_read(const std::string &path) {
    return FileDescriptor(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
}

std::string read_from(const FileDescriptor &file, off_t position) {
    std::string text;
    char block[4096];
    ssize_t length;
    while ((length = pread(file.get(), block, sizeof(block), position)) > 0) {
        text.append(block, static_cast<size_t>(length));
        position += length;
    }
    return text;
}

bool is_same_file(const FileDescriptor &a, const FileDescriptor &b) {
    struct stat one, other;
    return fstat(a.get(), &one) == 0 && fstat(b.get(), &other) == 0 && one.st_dev == other.st_dev &&
           one.st_ino == other.st_ino;
}

// "[TIME, error, FUNCTION-LINE]MESSAGE"; false for any other line.
bool take_error(const std::string &line, std::string &error) {
    const std::string kind = ", error, ";
    const size_t function = line.find(kind);
    if (line.empty() || line[0] != '[' || function == std::string::npos) {
        return false;
    }
    const size_t name = function + kind.size();
    const size_t number = line.find('-', name);
    const size_t message = line.find(']', name);
    if (number == std::string::npos || message == std::string::npos || number > message) {
        return false;
    }
    error = line.substr(name, number - name) + ": " + line.substr(message + 1);
    return true;
}

}  // namespace

TraceMark::TraceMark() : path_(trace_path()), file_(open_to_read(path_)) {
    struct stat status;
    if (file_ && fstat(file_.get(), &status) == 0) {
        end_ = status.st_size;
    }
}

std::vector<std::string> TraceMark::errors() const {
    std::string text = file_ ? read_from(file_, end_) : "";
    const FileDescriptor now = open_to_read(path_);
    if (now && (!file_ || !is_same_file(file_, now))) {
        text += read_from(now, 0);
    }
    std::vector<std::string> errors;
    std::istringstream lines(text);
    std::string error;
    for (std::string line; std::getline(lines, line);) {
        if (take_error(line, error)) {
            errors.push_back(error);
        }
    }
    return errors;
}

}  // namespace cmpntctl
