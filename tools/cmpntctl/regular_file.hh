// Whether a file is one that can be read as a whole: pipes and terminals would be waited for.
#ifndef CMPNTCTL_REGULAR_FILE_HH
#define CMPNTCTL_REGULAR_FILE_HH

#include <string>

namespace cmpntctl {

struct FileProblem {
    std::string text;  // empty: none
    bool is_missing = false;
    explicit operator bool() const { return !text.empty(); }
};

FileProblem look_at_regular_file(const std::string &path);

}  // namespace cmpntctl

#endif
