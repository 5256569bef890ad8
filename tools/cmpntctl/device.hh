// A device root in a folder: the fixed paths of the device (/var, /data, /tmp, /opt) lie in it, and
// whatever is run in it sees them in their place.
#ifndef CMPNTCTL_DEVICE_HH
#define CMPNTCTL_DEVICE_HH

#include <string>

namespace cmpntctl {

// Runs this program once more, inside the device root, with the given arguments (without its name,
// and without --device DIRECTORY). Returns its exit code; throws a Failure where nothing can be
// isolated or the folder is no device root.
int run_in_device(const std::string &directory, int count, char **arguments);

}  // namespace cmpntctl

#endif
