// What the library wrote to this thread's trace file from some moment on.
#ifndef CMPNTCTL_TRACE_ERRORS_HH
#define CMPNTCTL_TRACE_ERRORS_HH

#include <sys/types.h>

#include <string>
#include <vector>

#include "file_descriptor.hh"

namespace cmpntctl {

class TraceMark {
public:
    TraceMark();

    // "FUNCTION: MESSAGE" of each line of kind "error" since then, also when the file was renamed to
    // its backup meanwhile.
    std::vector<std::string> errors() const;

private:
    std::string path_;
    FileDescriptor file_;  // held open: it is ours by any name
    off_t end_ = 0;
};

}  // namespace cmpntctl

#endif
