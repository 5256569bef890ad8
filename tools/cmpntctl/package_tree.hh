// What a base package brings, unpacked into a folder of its own.
#ifndef CMPNTCTL_PACKAGE_TREE_HH
#define CMPNTCTL_PACKAGE_TREE_HH

#include <map>
#include <string>
#include <vector>

namespace cmpntctl {

// Whose files verification checks, as docs/security.md lists them.
inline constexpr const char *checked_directories[] = {
    "/sbin",          "/lib",           "/lib64",
    "/bin",           "/usr/bin",       "/usr/lib",
    "/usr/sbin",      "/usr/lib64",     "/usr/local/lib64",
    "/usr/local/bin", "/usr/local/lib", "/usr/local/sbin",
    "/etc/init.d",    "/etc/rc.d",
};

// Whether the path lies in one of them.
bool is_in_checked_directory(const std::string &path);

struct PackageFile {
    std::string unpacked;  // where it lies now
    bool is_link;
};

class PackageTree {
public:
    // Throws a Failure when it cannot be unpacked.
    explicit PackageTree(const std::string &package);
    ~PackageTree();
    PackageTree(const PackageTree &) = delete;
    PackageTree &operator=(const PackageTree &) = delete;

    // Files and links by the path where they would be installed.
    const std::map<std::string, PackageFile> &files() const { return files_; }

private:
    void collect(const std::string &tree, bool checked_only);

    std::string folder_;
    std::map<std::string, PackageFile> files_;
};

}  // namespace cmpntctl

#endif
