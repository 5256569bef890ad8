#include "file_digest.hh"

#include "libcmpnt_db.h"
#include "regular_file.hh"

namespace cmpntctl {

FileDigest digest_of(const std::string &path) {
    FileDigest digest;
    if (const FileProblem problem = look_at_regular_file(path)) {
        digest.error = problem.text;
        digest.is_missing = problem.is_missing;
        return digest;
    }
    char text[33] = {};
    if (calculate_file_md5sum(path.c_str(), text) != 0) {
        digest.error = "cannot be read";
    }
    digest.md5 = text;
    return digest;
}

std::string digest_line(const std::string &md5, const std::string &path) {
    std::string name;
    for (const char byte : path) {
        name += byte == '\n' ? "\\n" : byte == '\\' ? "\\\\" : std::string(1, byte);
    }
    return (name == path ? "" : "\\") + md5 + "  " + name + "\n";
}

}  // namespace cmpntctl
