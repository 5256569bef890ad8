#include "regular_file.hh"

#include <errno.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

namespace cmpntctl {

FileProblem look_at_regular_file(const std::string &path) {
    struct stat status;
    if (stat(path.c_str(), &status) != 0) {
        return {strerror(errno), errno == ENOENT};
    }
    if (!S_ISREG(status.st_mode)) {
        return {S_ISDIR(status.st_mode) ? "is a folder" : "is no regular file", false};
    }
    if (access(path.c_str(), R_OK) != 0) {
        return {strerror(errno), false};
    }
    return {};
}

}  // namespace cmpntctl
