// The records are loaded into the library's upgrade list, which decides and takes each withdrawn
// version off its list, in memory alone.
#include "rollback_plan.hh"

#include <unistd.h>

#include <algorithm>
#include <map>
#include <sstream>

#include "guard.hh"
#include "libcmpnt_db.h"
#include "main_database.hh"
#include "table.hh"

namespace cmpntctl {
namespace {

constexpr const char *states_in_force[] = {"active", "running", "Deactive_ready", "Deactive_cold"};

const char *word_for(Decision decision) {
    switch (decision) {
        case Decision::put_file:
            return "put_file";
        case Decision::keep_base:
            return "keep_base";
        case Decision::remove:
            return "remove";
        case Decision::skip:
            return "skip";
        default:
            return "blocked";
    }
}

struct BasePackage {
    std::string version;
    int state;
};
using BasePackages = std::map<std::string, BasePackage>;

BasePackages read_base_packages(const Session &session) {
    BasePackages packages;
    read_rows(session, "select package_name, base_version, package_state from package_info_table",
              {}, [&packages](sqlite3_stmt *row) {
                  packages[column_text(row, 0)] = {column_text(row, 1), sqlite3_column_int(row, 2)};
              });
    return packages;
}

// The list of records, for as long as it is asked.
class UpgradeList {
public:
    explicit UpgradeList(const Session &session) {
        wait_for_lock(session);
        cmpnt_client_list_init();
        if (traverse_pkg_info_table(CMPNT_PKG_UPGRADE_TABLE, CMPNT_ROWS_TO_UPGRADE_LIST, 0,
                                    CMPNT_DB_MAIN) != 0) {
            cmpnt_recycle_upgrade_list(CMPNT_UPGRADE_LIST);
            throw library_failure("the upgrade records cannot be loaded");
        }
    }
    UpgradeList(const UpgradeList &) = delete;
    UpgradeList &operator=(const UpgradeList &) = delete;
    ~UpgradeList() { cmpnt_recycle_upgrade_list(CMPNT_UPGRADE_LIST); }

    std::vector<cmpnt_upgrade_value> records() const {
        std::vector<cmpnt_upgrade_value> values;
        for (cmpnt_list_head *link = cmpnt_upgrade_list.next; link != &cmpnt_upgrade_list;
             link = link->next) {
            values.push_back(CMPNT_UPGRADE_NODE(link)->value);
        }
        return values;
    }
};

bool is_in_force(const std::string &state) {
    return std::find(std::begin(states_in_force), std::end(states_in_force), state) !=
           std::end(states_in_force);
}

struct Answer {
    int32_t result;
    std::string file;
    bool is_removal;
};

Answer ask_library(const Session &session, const PackagePlan &package) {
    char *files[2] = {};
    char *removals[2] = {};
    int32_t file_count = 0;
    int32_t removal_count = 0;
    wait_for_lock(session);
    Answer answer;
    answer.result = cmpnt_get_target_pkg_path(package.package.c_str(), package.version.c_str(),
                                              files, &file_count, removals, &removal_count);
    answer.file = file_count > 0 && files[0] != nullptr ? files[0] : "";
    answer.is_removal = removal_count > 0;
    cmpnt_recycle_pointer_array(files, 2);
    cmpnt_recycle_pointer_array(removals, 2);
    return answer;
}

// What is put in place, when the library named a file.
void take_file(PackagePlan &package, const std::string &file,
               const std::vector<cmpnt_upgrade_value> &records) {
    package.file = file;
    if (file.empty()) {
        package.reason = "no other upgrade of it is active or running";
        return;
    }
    package.target_version = package.base_version;
    package.reason = "no other upgrade in force: the base package file";
    for (const cmpnt_upgrade_value &record : records) {
        if (package.package == record.pkg_name && file == record.cur_pkg_path) {
            package.target_version = record.cur_version;
            package.reason = std::string("the newest upgrade still in force: ") + record.patch_name;
        }
    }
    if (access(file.c_str(), R_OK) != 0) {
        package.reason = "the file is not there, or cannot be read";
        return;
    }
    package.decision = Decision::put_file;
}

void decide(const Session &session, PackagePlan &package,
            const std::vector<cmpnt_upgrade_value> &records) {
    const Answer answer = ask_library(session, package);
    if (answer.result == CMPNT_TARGET_STORED) {
        take_file(package, answer.file, records);
    } else if (answer.result != CMPNT_TARGET_NO_FILE) {
        package.reason = "the library cannot decide: see cmpntctl log show";
    } else if (answer.is_removal) {
        package.decision = Decision::remove;
        package.reason = "not a base package, and no other upgrade in force";
    } else {
        package.decision = Decision::keep_base;
        package.target_version = package.base_version;
        package.reason = "a base package without a file in the backup cache";
    }
}

// The name and the version will stand in SQL, the name in a file's name.
bool are_safe(PackagePlan &package) {
    try {
        guard_name("the package name", package.package, sizeof(cmpnt_upgrade_value::pkg_name) - 1);
        guard_text("the version", package.version, sizeof(cmpnt_upgrade_value::cur_version) - 1);
        return true;
    } catch (const Failure &failure) {
        package.reason = failure.what();
        return false;
    }
}

PackagePlan plan_package(const Session &session, const cmpnt_upgrade_value &record,
                         const std::vector<cmpnt_upgrade_value> &records,
                         const BasePackages &base_packages) {
    PackagePlan package;
    package.package = record.pkg_name;
    package.version = record.cur_version;
    package.state = record.state_name;
    const auto base = base_packages.find(package.package);
    if (base != base_packages.end()) {
        package.is_base_package = true;
        package.base_version = base->second.version;
        package.base_state = base->second.state;
    }
    if (!is_in_force(package.state)) {
        package.decision = Decision::skip;
        package.target_version = package.version;
        package.reason = "the patch is not in force for it: " + package.state;
    } else if (are_safe(package)) {
        decide(session, package, records);
    }
    return package;
}

std::string target_of(const PackagePlan &package) {
    switch (package.decision) {
        case Decision::put_file:
            return package.file;
        case Decision::keep_base:
            return "keep the base package";
        case Decision::remove:
            return "remove";
        case Decision::skip:
            return "nothing to do";
        default:
            return "BLOCKED" + (package.file.empty() ? "" : ": " + package.file);
    }
}

ExitCode code_of(const RollbackPlan &plan) {
    if (plan.has(Decision::blocked)) {
        return ExitCode::failed;
    }
    return plan.is_empty() ? ExitCode::nothing : ExitCode::done;
}

}  // namespace

bool RollbackPlan::has(Decision decision) const {
    return std::any_of(packages.begin(), packages.end(), [decision](const PackagePlan &package) {
        return package.decision == decision;
    });
}

bool RollbackPlan::is_empty() const {
    return std::all_of(packages.begin(), packages.end(), [](const PackagePlan &package) {
        return package.decision == Decision::skip;
    });
}

// Paths and reasons are long, and the answer: they have lines of their own.
std::string RollbackPlan::text(const Session &session) const {
    Table table({"PACKAGE", "VERSION", "STATE"});
    for (const PackagePlan &package : packages) {
        table.add({package.package, package.version, package.state});
    }
    std::istringstream rows(table.text(session));
    std::string lines;
    std::string row;
    std::getline(rows, row);
    lines += row + "\n";
    for (const PackagePlan &package : packages) {
        std::getline(rows, row);
        lines += row + "\n  -> " + printable(target_of(package)) + "\n     (" +
                 printable(package.reason) + ")\n";
    }
    return lines;
}

Json RollbackPlan::data() const {
    Json list = Json::array();
    for (const PackagePlan &package : packages) {
        list.push_back({{"pkg_name", package.package},
                        {"cur_version", package.version},
                        {"pkg_state_name", package.state},
                        {"decision", word_for(package.decision)},
                        {"file", package.file.empty() ? Json() : Json(package.file)},
                        {"target_version",
                         package.target_version.empty() ? Json() : Json(package.target_version)},
                        {"reason", package.reason}});
    }
    return {{"patch_name", patch}, {"packages", list}};
}

RollbackPlan plan_rollback(const Session &session, const std::string &patch) {
    require_main_database();
    const BasePackages base_packages = read_base_packages(session);
    const UpgradeList list(session);
    const std::vector<cmpnt_upgrade_value> records = list.records();
    RollbackPlan plan = {patch, {}};
    for (const cmpnt_upgrade_value &record : records) {
        if (patch == record.patch_name) {
            plan.packages.push_back(plan_package(session, record, records, base_packages));
        }
    }
    if (plan.packages.empty()) {
        throw Failure(ExitCode::nothing, "no record has the patch \"" + printable(patch) + "\"",
                      "See which there are: cmpntctl list.");
    }
    return plan;
}

void run_plan_rollback(Session &session, const std::string &patch) {
    const RollbackPlan plan = plan_rollback(session, patch);
    Report report;
    report.code = code_of(plan);
    report.text = plan.text(session);
    report.data = plan.data();
    finish(session, "plan rollback", report);
}

}  // namespace cmpntctl
