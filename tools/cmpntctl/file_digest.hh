// MD5 digests of files.
#ifndef CMPNTCTL_FILE_DIGEST_HH
#define CMPNTCTL_FILE_DIGEST_HH

#include <string>

namespace cmpntctl {

struct FileDigest {
    std::string md5;    // 32 hexadecimal digits, or
    std::string error;  // why there are none
    bool is_missing = false;
};

FileDigest digest_of(const std::string &path);

// A line as md5sum prints it, with its newline: names with newlines and backslashes are escaped.
std::string digest_line(const std::string &md5, const std::string &path);

}  // namespace cmpntctl

#endif
