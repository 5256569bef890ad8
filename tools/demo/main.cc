#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include <fstream>

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

const char *last_component(const char *path) { return strrchr(path, '/') + 1; }

bool change_a_byte(const char *path) {
    std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
    file.seekg(-1, std::ios::end);
    const int byte = file.get();
    file.seekp(-1, std::ios::end);
    file.put(static_cast<char>(byte ^ 1));
    return static_cast<bool>(file.flush());
}

bool fail(const char *what) {
    printf("FAILED: %s; see %s\n", what, trace_file);
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
    if (!demo::try_verification() || !demo::try_whitelist()) {
        return 1;
    }
    printf("every verification ended as expected\n\n");
    printf("databases:  %s\n            %s\n", demo::main_database, demo::backup_database);
    printf("trace file: %s\n", demo::trace_file);
    return 0;
}
