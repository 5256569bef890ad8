// What the library reads from the control file of an SMU or patch.
#ifndef CMPNTCTL_CONTROL_FILE_HH
#define CMPNTCTL_CONTROL_FILE_HH

#include <stdint.h>

#include <string>

namespace cmpntctl {

struct ControlFile {
    std::string package;
    std::string version;
    std::string architecture;
    std::string description;
    std::string md5_sum;
    std::string serial;
    std::string card_type;
    uint32_t installed_size;
    uint32_t installed_time;
    bool is_reboot;
};

// Throws a Failure for a file that is missing, cannot be read or has no package.
ControlFile read_control_file(const std::string &path);

}  // namespace cmpntctl

#endif
