// Step 4: the rollback of one upgrade.
#include <stdio.h>
#include <string.h>

#include "tools/demo/demo.hh"

namespace demo {
namespace {

enum { UPDATE_BASE_PACKAGE = 2 };  // a write code of cmpnt_operate_pkg_database

constexpr int32_t array_size = 32;

// Package names and versions of the upgrade, before the choices start to take nodes away.
std::vector<PackageOutcome> packages_of(const char *patch) {
    std::vector<PackageOutcome> packages;
    for (cmpnt_list_head *link = cmpnt_upgrade_list.next; link != &cmpnt_upgrade_list;
         link = link->next) {
        const cmpnt_upgrade_value &value = CMPNT_UPGRADE_NODE(link)->value;
        if (strcmp(value.patch_name, patch) == 0) {
            packages.push_back({value.pkg_name, value.cur_version, Decision::FAILED, ""});
        }
    }
    return packages;
}

void choose(PackageOutcome &outcome, char **paths, int32_t *path_count, char **removals,
            int32_t *removal_count) {
    const int32_t removals_before = *removal_count;
    switch (cmpnt_get_target_pkg_path(outcome.package.c_str(), outcome.withdrawn_version.c_str(),
                                      paths, path_count, removals, removal_count)) {
        case CMPNT_TARGET_STORED:
            outcome.decision = Decision::TO_FILE;
            outcome.path = paths[*path_count - 1];
            break;
        case CMPNT_TARGET_NO_FILE:
            outcome.decision =
                *removal_count > removals_before ? Decision::REMOVE : Decision::KEEP_BASE;
            break;
        default:
            break;
    }
}

// The version that a package file states.
std::string version_in(const std::string &path) {
    cmpnt_control_info package = {};
    cmpnt_file_param param;
    set_file_param(&param, CMPNT_PARSE_ONE_PARAGRAPH, 0, 0, 0);
    parse_pkg_info_from_file(&package, path.c_str(), &param);
    return package.version;
}

bool put_in_place(const PackageOutcome &outcome) {
    const std::string installed = installed_file(outcome.package);
    if (outcome.decision == Decision::TO_FILE) {
        return cmpnt_copy_file_by_write(outcome.path.c_str(), installed.c_str()) != -1;
    }
    return cmpnt_remove(installed.c_str()) == 0;
}

bool update_base_package(const PackageOutcome &outcome) {
    const std::string base = base_version_of(outcome.package);
    if (base.empty()) {
        return true;  // not a base package
    }
    const std::string current =
        outcome.decision == Decision::TO_FILE ? version_in(outcome.path) : base;
    cmpnt_db_request request = {};
    request.table = CMPNT_PACKAGE_INFO_TABLE;
    request.cmd = UPDATE_BASE_PACKAGE;
    set_base_db_value(&request.base, outcome.package.c_str(), base.c_str(), current.c_str(),
                      CMPNT_STATE_RUNNING, 0, 0);
    return cmpnt_operate_pkg_database(&request, UPDATE_BASE_PACKAGE) == 0;
}

void print_outcome(const PackageOutcome &outcome) {
    printf("  %-11s %-22s -> ", outcome.package.c_str(), outcome.withdrawn_version.c_str());
    switch (outcome.decision) {
        case Decision::TO_FILE:
            printf("%s\n%40s(%s)\n", outcome.path.c_str(), "",
                   outcome.path.compare(0, strlen(backup_cache), backup_cache) == 0
                       ? "no other upgrade in force: the base package file"
                       : "the newest upgrade still in force");
            break;
        case Decision::KEEP_BASE:
            printf("keep the base package\n%40s(no base file in the cache, but a base package)\n",
                   "");
            break;
        case Decision::REMOVE:
            printf("remove\n%40s(not a base package, and no other upgrade in force)\n", "");
            break;
        case Decision::FAILED:
            printf("FAILED\n");
            break;
    }
}

}  // namespace

bool roll_back(std::vector<PackageOutcome> &outcomes) {
    cmpnt_client_list_init();
    if (traverse_pkg_info_table(CMPNT_PKG_UPGRADE_TABLE, CMPNT_ROWS_TO_UPGRADE_LIST, 0,
                                CMPNT_DB_MAIN) != 0) {
        return fail("loading the upgrade records");
    }
    char *paths[array_size] = {};
    char *removals[array_size] = {};
    int32_t path_count = 0;
    int32_t removal_count = 0;
    outcomes = packages_of(withdrawn_upgrade);
    printf("taking away %s:\n", withdrawn_upgrade);
    bool good = !outcomes.empty();
    for (PackageOutcome &outcome : outcomes) {
        choose(outcome, paths, &path_count, removals, &removal_count);
        print_outcome(outcome);
        good = good && outcome.decision != Decision::FAILED && put_in_place(outcome) &&
               update_base_package(outcome);
    }
    good = good &&
           cmpnt_update_state_database(withdrawn_upgrade, nullptr, CMPNT_STATE_INSTALLED,
                                       CMPNT_PKG_UPGRADE_TABLE) == 0 &&
           cmpnt_update_deactive_time(withdrawn_upgrade) == 0;
    cmpnt_recycle_pointer_array(paths, array_size);
    cmpnt_recycle_pointer_array(removals, array_size);
    cmpnt_recycle_upgrade_list(CMPNT_UPGRADE_LIST);
    return good || fail("rolling back");
}

bool outcomes_are_expected(const std::vector<PackageOutcome> &outcomes) {
    const std::string smu1 = std::string(download_cache) + "/smu_base_fixes";
    const PackageOutcome expected[] = {
        {"bash", "", Decision::TO_FILE,
         package_file(smu1, "bash", base_version_of("bash") + "+smu1")},
        {"tar", "", Decision::TO_FILE, package_file(backup_cache, "tar", base_version_of("tar"))},
        {"grep", "", Decision::KEEP_BASE, ""},
        {"field-diag", "", Decision::REMOVE, ""},
    };
    size_t i = 0;
    bool good = outcomes.size() == sizeof(expected) / sizeof(expected[0]);
    for (const PackageOutcome &outcome : outcomes) {
        const bool same =
            i < sizeof(expected) / sizeof(expected[0]) && outcome.package == expected[i].package &&
            outcome.decision == expected[i].decision && outcome.path == expected[i].path;
        if (!same) {
            printf("  unexpected: %s\n", outcome.package.c_str());
        }
        good = good && same;
        i++;
    }
    // And the device has what was decided.
    good = good && version_in(installed_file("bash")) == base_version_of("bash") + "+smu1" &&
           version_in(installed_file("tar")) == base_version_of("tar") &&
           file_is_exist(installed_file("grep").c_str()) == 0 &&
           file_is_exist(installed_file("field-diag").c_str()) == 0;
    return good || fail("finding every decision as expected");
}

}  // namespace demo
