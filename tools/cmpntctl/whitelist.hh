// The lists of installed files whose digest does not count.
#ifndef CMPNTCTL_WHITELIST_HH
#define CMPNTCTL_WHITELIST_HH

#include <string>
#include <vector>

namespace cmpntctl {

inline constexpr char global_whitelist_path[] = "/var/safe-verify/sm3/global-white-sm3.hash";
inline constexpr char global_whitelist_signature[] =
    "/var/safe-verify/signature/global-white-sm2.sign";
inline constexpr char dynamic_whitelist_path[] = "/var/safe-verify/sm3/global-d-white-sm3.hash";

struct WhitelistLine {
    size_t number;       // counted from 1
    std::string path;    // as it stands there
    std::string client;  // of the dynamic whitelist
};

// The line that lets the path pass: the first that begins with it. None when the list is missing.
std::vector<WhitelistLine> find_in_global_whitelist(const std::string &path);

// The lines of the path, of all clients.
std::vector<WhitelistLine> find_in_dynamic_whitelist(const std::string &path);

}  // namespace cmpntctl

#endif
