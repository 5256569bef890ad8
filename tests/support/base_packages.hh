// Base packages, packed by tar from a tree.
#ifndef CMPNT_TESTS_BASE_PACKAGES_HH
#define CMPNT_TESTS_BASE_PACKAGES_HH

#include <stdlib.h>
#include <unistd.h>

#include <string>

#include "tests/support/files.hh"

// What a package installs, relative to the root of the device, and what lies beside that in it.
class PackageTree {
public:
    PackageTree() {
        remove_tree(installed_);
        remove_tree(outer_);
        make_directories(installed_);
        make_directories(outer_);
    }

    PackageTree &file(const std::string &path, const std::string &text = "x") {
        write_file(installed_ + path, text);
        return *this;
    }

    PackageTree &link(const std::string &path, const std::string &target) {
        make_directories((installed_ + path).substr(0, (installed_ + path).rfind('/')));
        (void)!symlink(target.c_str(), (installed_ + path).c_str());
        return *this;
    }

    PackageTree &directory(const std::string &path) {
        make_directories(installed_ + path);
        return *this;
    }

    // Beside the inner archive.
    PackageTree &outer_file(const std::string &name, const std::string &text) {
        write_file(outer_ + ("/" + name), text);
        return *this;
    }

    // False when tar fails.
    bool pack(const std::string &package) const {
        return run("tar -czf " + std::string(outer_) + "/data.tar.gz -C " + installed_ + " .") &&
               pack_without_inner_archive(package);
    }

    bool pack_without_inner_archive(const std::string &package) const {
        make_directories(package.substr(0, package.rfind('/')));
        return run("tar -czf '" + package + "' -C " + outer_ + " .");
    }

private:
    static bool run(const std::string &command) { return system(command.c_str()) == 0; }

    static constexpr char installed_[] = "/opt/package/installed";
    static constexpr char outer_[] = "/opt/package/outer";
};

#endif
