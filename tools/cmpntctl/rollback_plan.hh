// What taking a patch away comes to, package by package: the library's decision, with its reason.
#ifndef CMPNTCTL_ROLLBACK_PLAN_HH
#define CMPNTCTL_ROLLBACK_PLAN_HH

#include <string>
#include <vector>

#include "command.hh"

namespace cmpntctl {

enum class Decision {
    put_file,   // the package goes back to the file
    keep_base,  // the base package stays, without a file
    remove,     // the package goes
    skip,       // the patch is not in force for it: nothing is done
    blocked,    // it cannot be rolled back
};

struct PackagePlan {
    std::string package;
    std::string version;  // the one that is taken away
    std::string state;
    Decision decision = Decision::blocked;
    std::string file;            // of put_file
    std::string target_version;  // what the package has afterwards; empty: it is gone
    std::string reason;
    bool is_base_package = false;  // package_info_table knows it
    std::string base_version;
    int base_state = 0;
};

struct RollbackPlan {
    std::string patch;
    std::vector<PackagePlan> packages;

    bool has(Decision decision) const;
    bool is_empty() const;  // nothing to do for any package
    std::string text(const Session &session) const;
    Json data() const;
};

// Reads and decides; changes nothing. Throws a Failure (nothing) when no record has the patch.
RollbackPlan plan_rollback(const Session &session, const std::string &patch);

// The command "plan rollback".
void run_plan_rollback(Session &session, const std::string &patch);

}  // namespace cmpntctl

#endif
