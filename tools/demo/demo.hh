// The demo: one upgrade is taken off a device whose packages are this machine's own, a hot patch is
// looked up, and packages are verified.
#ifndef CMPNT_DEMO_HH
#define CMPNT_DEMO_HH

#include <string>
#include <vector>

#include "libcmpnt_db.h"

namespace demo {

constexpr char backup_cache[] = "/var/cache/opkg/backup";
constexpr char download_cache[] = "/data/cmpnt/opkg/download";
constexpr char installed_packages[] = "/opt/packages";
constexpr char main_database[] = "/var/lib/opkg/cmpnt_upgrade.db3";
constexpr char backup_database[] = "/data/cmpnt/opkg/cmpnt_upgrade_backup.db3";
constexpr char trace_file[] = "/var/cache/opkg/debug/.cmpnt_demo.log";

// The upgrade that the demo takes away.
constexpr char withdrawn_upgrade[] = "smu_security";

// What is to become of a package.
enum class Decision { TO_FILE, KEEP_BASE, REMOVE, FAILED };

struct PackageOutcome {
    std::string package;
    std::string withdrawn_version;
    Decision decision;
    std::string path;  // of the file to go back to
};

// Each step prints what it did and returns false when it failed.
bool create_databases();
bool import_installed_packages();  // from the machine's own status file
bool record_upgrades();
bool roll_back(std::vector<PackageOutcome> &outcomes);
bool outcomes_are_expected(const std::vector<PackageOutcome> &outcomes);
bool try_hot_patch();
bool try_verification();
bool try_whitelist();

void show_tables(const char *title);

// The base version that the database has for a package; empty when it knows none.
std::string base_version_of(const std::string &package);
// "DIRECTORY/PACKAGE_VERSION.ipk".
std::string package_file(const std::string &directory, const std::string &package,
                         const std::string &version);
std::string installed_file(const std::string &package);
const char *last_component(const char *path);
bool change_a_byte(const char *path);  // the last; a second time changes it back
bool fail(const char *what);           // prints it; false

}  // namespace demo

#endif
