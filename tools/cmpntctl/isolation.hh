// Running a command where the fixed paths of the device are those of a device root, by bubblewrap,
// as whoever calls.
#ifndef CMPNTCTL_ISOLATION_HH
#define CMPNTCTL_ISOLATION_HH

#include <string>
#include <vector>

namespace cmpntctl {

// The options of bubblewrap: the machine read-only, the folders of the root in the place of its own.
std::vector<std::string> isolation_options(const std::string &root);

// Options that show this program inside, and its path there. It and its libraries are shown in a
// folder of their own when they lie where the device root lies over the machine.
struct OwnProgram {
    std::vector<std::string> options;
    std::string path;
};
OwnProgram show_own_program();

// Waits for the command and returns its exit code (128 and more for a signal), as a shell does.
// Throws a Failure when it could not be started.
int run_isolated(const std::string &root, const std::vector<std::string> &command);

}  // namespace cmpntctl

#endif
