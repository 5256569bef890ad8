#include <stdio.h>
#include <unistd.h>

#include "tools/demo/demo.hh"

namespace demo {

std::string base_version_of(const std::string &package) {
    char version[CMPNT_VERSION_SIZE] = "";
    cmpnt_get_base_version_by_pkg_name(package.c_str(), version);
    return version;
}

std::string package_file(const std::string &directory, const std::string &package,
                         const std::string &version) {
    return directory + "/" + package + "_" + version + ".ipk";
}

std::string installed_file(const std::string &package) {
    return std::string(installed_packages) + "/" + package + ".ipk";
}

bool fail(const char *what) {
    printf("FAILED: %s; see /var/cache/opkg/debug/.cmpnt_demo.log\n", what);
    return false;
}

}  // namespace demo

int main() {
    if (access("/.cmpnt-sandbox", F_OK) != 0) {
        fprintf(stderr,
                "cmpnt_demo writes on the device's fixed paths: start it with ./run demo\n");
        return 70;
    }
    std::vector<demo::PackageOutcome> outcomes;
    if (!demo::create_databases() || !demo::import_installed_packages() ||
        !demo::record_upgrades()) {
        return 1;
    }
    demo::show_tables("before");
    if (!demo::roll_back(outcomes)) {
        return 1;
    }
    demo::show_tables("after");
    if (!demo::outcomes_are_expected(outcomes)) {
        return 1;
    }
    printf("every decision is the expected one\n\n");
    if (!demo::try_hot_patch()) {
        return 1;
    }
    printf("every answer is the expected one\n\n");
    printf("databases:  %s\n            %s\n", demo::main_database, demo::backup_database);
    printf("trace file: /var/cache/opkg/debug/.cmpnt_demo.log\n");
    return 0;
}
