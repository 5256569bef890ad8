// The folders of a device root.
#ifndef CMPNTCTL_DEVICE_ROOT_HH
#define CMPNTCTL_DEVICE_ROOT_HH

#include <string>
#include <vector>

namespace cmpntctl {

// The fixed paths of the device that lie in a device root, in the place of the machine's.
inline constexpr const char *private_folders[] = {"/var", "/data", "/tmp", "/opt"};

// True for a path that is, or lies in, one of these.
bool is_private(const std::string &path);

// Makes the folders of a new device root and returns their paths. Throws a Failure for a folder that
// is not empty, or that cannot be made.
std::vector<std::string> create_device_root(const std::string &directory);

// The absolute path of a device root; throws a Failure for a folder that is none.
std::string open_device_root(const std::string &directory);

}  // namespace cmpntctl

#endif
