// First all files are copied beside their places, where a failure changes nothing. Then each package
// is brought into place and into step before the next one, so that what a broken-off run has left can
// be done by another.
#include "rollback.hh"

#include <fcntl.h>
#include <signal.h>
#include <stdio.h>
#include <sys/stat.h>

#include "confirm.hh"
#include "file_descriptor.hh"
#include "guard.hh"
#include "history.hh"
#include "libcmpnt_db.h"
#include "main_database.hh"
#include "report.hh"
#include "rollback_plan.hh"

namespace cmpntctl {
namespace {

enum { set_base_version = 2, set_state = 12 };  // operation codes

class Rollback {
public:
    Rollback(const Session &session, const RollbackPlan &plan, std::string directory)
        : session_(session), plan_(plan), directory_(std::move(directory)) {}

    void run() {
        try {
            copy_files();
        } catch (const Failure &) {
            remove_copies();
            throw;
        }
        for (const PackagePlan &package : plan_.packages) {
            if (package.decision != Decision::skip) {
                bring_back(package);
            }
        }
        wait_for_lock(session_);
        if (cmpnt_update_deactive_time(plan_.patch.c_str()) != 0) {
            throw library_failure("the effective time of " + plan_.patch + " cannot be cleared");
        }
        tell(plan_.patch, "is no longer in force");
    }

private:
    std::string place_of(const PackagePlan &package) const {
        return directory_ + "/" + package.package + ".ipk";
    }
    std::string copy_of(const PackagePlan &package) const {
        return directory_ + "/." + package.package + ".ipk.new";
    }
    bool has_file(const PackagePlan &package) const {
        return !directory_.empty() && package.decision == Decision::put_file;
    }

    static void tell(const std::string &what, const std::string &done) {
        fprintf(stderr, "  %s: %s\n", what.c_str(), done.c_str());
    }

    void copy_files() const {
        for (const PackagePlan &package : plan_.packages) {
            if (has_file(package) &&
                (cmpnt_copy_file_by_write(package.file.c_str(), copy_of(package).c_str()) == -1 ||
                 chmod(copy_of(package).c_str(), 0644) != 0)) {
                throw library_failure(package.file + " cannot be copied into " + directory_ +
                                      "; nothing was changed");
            }
        }
    }

    void remove_copies() const {
        for (const PackagePlan &package : plan_.packages) {
            if (has_file(package)) {
                cmpnt_remove(copy_of(package).c_str());
            }
        }
    }

    void bring_back(const PackagePlan &package) const {
        if (!directory_.empty()) {
            put_in_place(package);
        }
        update_base_package(package);
        update_state(package);
        tell(package.package, directory_.empty() ? "recorded" : "in place and recorded");
    }

    void put_in_place(const PackagePlan &package) const {
        const std::string place = place_of(package);
        const bool is_done = has_file(package)
                                 ? cmpnt_rename(copy_of(package).c_str(), place.c_str()) == 0
                                 : cmpnt_remove(place.c_str()) == 0;
        if (!is_done) {
            throw library_failure(place + " cannot be changed");
        }
        const FileDescriptor directory(
            open(directory_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        cmpnt_fsync(directory.get());
    }

    void update_base_package(const PackagePlan &package) const {
        if (!package.is_base_package) {
            return;
        }
        cmpnt_db_request request = {};
        request.table = CMPNT_PACKAGE_INFO_TABLE;
        set_base_db_value(&request.base, package.package.c_str(), package.base_version.c_str(),
                          package.target_version.c_str(), package.base_state, 0, 0);
        write_record(session_, request, set_base_version,
                     "the current version of " + package.package + " cannot be recorded");
    }

    void update_state(const PackagePlan &package) const {
        cmpnt_db_request request = {};
        request.table = CMPNT_PKG_UPGRADE_TABLE;
        set_upgrade_db_value(&request.record, plan_.patch.c_str(), package.package.c_str(), nullptr,
                             nullptr, nullptr, CMPNT_STATE_INSTALLED, 0, 0, 0, nullptr);
        write_record(session_, request, set_state,
                     "the state of " + package.package + " cannot be recorded");
    }

    const Session &session_;
    const RollbackPlan &plan_;
    const std::string directory_;
};

void guard_arguments(const std::string &patch, const std::string &directory) {
    guard_name("the patch name", patch, CMPNT_PATCH_NAME_SIZE - 1);
    if (directory.empty()) {
        return;
    }
    guard_path("the folder", directory);
    if (is_dir(directory.c_str()) == 0) {
        throw Failure(ExitCode::failed, directory + " is no folder",
                      "Make it, or name the one that installed package files go to.");
    }
}

void refuse_what_cannot_be_done(const RollbackPlan &plan) {
    if (plan.has(Decision::blocked)) {
        throw Failure(
            ExitCode::failed, plan.patch + " cannot be rolled back; nothing was changed",
            "See which package is blocked, and why: cmpntctl plan rollback " + plan.patch + ".");
    }
    if (plan.is_empty()) {
        throw Failure(ExitCode::nothing, plan.patch + " is not in force: nothing to do",
                      "See its records: cmpntctl show " + plan.patch + ".");
    }
}

void carry_out(const Session &session, const RollbackPlan &plan, const std::string &directory) {
    const Json details = {{"patch_name", plan.patch}, {"install_dir", directory}};
    // A terminal that goes away must not leave half of it done.
    signal(SIGPIPE, SIG_IGN);
    signal(SIGHUP, SIG_IGN);
    try {
        Rollback(session, plan, directory).run();
    } catch (const Failure &failure) {
        record_history("rollback", details, failure.code());
        throw;
    }
    record_history("rollback", details, ExitCode::done);
}

}  // namespace

void run_rollback(Session &session, const std::string &patch, const std::string &install_dir) {
    guard_arguments(patch, install_dir);
    const RollbackPlan plan = plan_rollback(session, patch);
    const std::string how =
        install_dir.empty()
            ? "No --install-dir: the records change, and no package file is touched.\n"
            : "Package files are put into " + install_dir + ".\n";
    if (session.json) {
        fputs((plan.text(session) + how).c_str(), stderr);
    } else {
        print(plan.text(session) + how);
    }
    refuse_what_cannot_be_done(plan);
    confirm(session, "Roll back " + patch + "?");
    carry_out(session, plan, install_dir);
    Report report;
    report.text = "rolled back " + patch + "\n";
    report.data = plan.data();
    report.data["install_dir"] = install_dir.empty() ? Json() : Json(install_dir);
    finish(session, "rollback", report);
}

}  // namespace cmpntctl
