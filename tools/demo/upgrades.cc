// Step 3: three upgrades on top of the installed packages, with their files in the caches.
#include <stdio.h>
#include <string.h>

#include "tools/demo/demo.hh"

namespace demo {
namespace {

// Write codes of cmpnt_operate_pkg_database that the demo uses.
enum { INSERT_OR_UPDATE = 2, SET_CUR_FLAG = 7, SET_PKG_STATE = 12, SET_OP_FLAG = 16 };

constexpr int32_t cold_smu = 0x1;
constexpr int32_t single_patch = 1;

struct Upgrade {
    const char *patch;
    const char *package;
    const char *version_suffix;  // behind the base version
    const char *last_suffix;     // of the version it replaced
    int32_t state;
    int32_t patch_type;
};

// bash is upgraded twice, sed by an SMU and a single patch, the rest once; field-diag is new.
constexpr Upgrade upgrades[] = {
    {"smu_base_fixes", "bash", "+smu1", "", CMPNT_STATE_RUNNING, 0},
    {"smu_base_fixes", "sed", "+smu1", "", CMPNT_STATE_RUNNING, 0},
    {withdrawn_upgrade, "bash", "+smu2", "+smu1", CMPNT_STATE_ACTIVE, 0},
    {withdrawn_upgrade, "tar", "+smu2", "", CMPNT_STATE_ACTIVE, 0},
    {withdrawn_upgrade, "grep", "+smu2", "", CMPNT_STATE_ACTIVE, 0},
    {withdrawn_upgrade, "field-diag", "1.0+smu2", "", CMPNT_STATE_ACTIVE, 0},
    {"patch_sed_7", "sed", "+smu1+p7", "+smu1", CMPNT_STATE_ACTIVE, single_patch},
};

// Base packages whose files are kept in the backup cache; grep's is not.
constexpr const char *kept_base_packages[] = {"bash", "sed", "tar"};

bool make_package_file(const std::string &path, const std::string &package,
                       const std::string &version) {
    cmpnt_remove(path.c_str());
    return cmpnt_write_to_file(("Package: " + package + "\nVersion: " + version).c_str(),
                               path.c_str()) == 0;
}

bool write_record(cmpnt_db_request &request, int32_t cmd) {
    request.cmd = cmd;
    return cmpnt_operate_pkg_database(&request, cmd) == 0;
}

// As an upgrade server does it: added as installed, then taken to its state.
bool record_upgrade(const Upgrade &upgrade) {
    const std::string base = base_version_of(upgrade.package);
    const std::string version = base + upgrade.version_suffix;
    const std::string last = base + upgrade.last_suffix;
    const std::string path =
        package_file(std::string(download_cache) + "/" + upgrade.patch, upgrade.package, version);
    if (!make_package_file(path, upgrade.package, version) ||
        !make_package_file(installed_file(upgrade.package), upgrade.package, version)) {
        return false;
    }
    cmpnt_db_request request = {};
    request.table = CMPNT_PKG_UPGRADE_TABLE;
    request.db_type = CMPNT_DB_MAIN;
    set_upgrade_db_value(&request.record, upgrade.patch, upgrade.package, path.c_str(),
                         version.c_str(), last.c_str(), CMPNT_STATE_INSTALLED, 0x302, 0, 0,
                         "demo upgrade");
    cmpnt_single_patch_value patch = {};
    snprintf(patch.patch_id, sizeof(patch.patch_id), "%s-id", upgrade.patch);
    patch.patch_type = upgrade.patch_type;
    set_single_patch_db_value(&request.record, &patch);
    if (!write_record(request, INSERT_OR_UPDATE)) {
        return false;
    }
    request.record.pkg_state = upgrade.state;
    request.record.cur_flag = 1;
    request.record.op_flag = upgrade.patch_type == single_patch ? 0 : cold_smu;
    return write_record(request, SET_PKG_STATE) && write_record(request, SET_CUR_FLAG) &&
           write_record(request, SET_OP_FLAG) && cmpnt_update_active_time(upgrade.patch) == 0;
}

}  // namespace

bool record_upgrades() {
    for (const char *package : kept_base_packages) {
        const std::string base = base_version_of(package);
        if (base.empty() ||
            !make_package_file(package_file(backup_cache, package, base), package, base)) {
            return fail("keeping the base packages");
        }
    }
    for (const Upgrade &upgrade : upgrades) {
        if (!record_upgrade(upgrade)) {
            return fail("recording an upgrade");
        }
        printf("recorded %-15s %-11s version %s%s\n", upgrade.patch, upgrade.package,
               base_version_of(upgrade.package).c_str(), upgrade.version_suffix);
    }
    return true;
}

}  // namespace demo
