// Hot patches: looking them up, and checking the file that one is for.
#include <memory>
#include <optional>

#include "criteria.hh"
#include "database_files.hh"
#include "file_digest.hh"
#include "libcmpnt_db.h"
#include "regular_file.hh"
#include "table.hh"
#include "verify.hh"

namespace cmpntctl {
namespace {

// No question is worth a new, empty database.
void look_for_database() {
    if (const FileProblem problem = look_at_regular_file(main_database)) {
        throw Failure(problem.is_missing ? ExitCode::nothing : ExitCode::failed,
                      std::string("no main database: ") + main_database + ": " + problem.text,
                      problem.is_missing ? "Make one with: cmpntctl init"
                                         : "Run it as a user who may read and write it.");
    }
}

[[noreturn]] void fail_to_load() {
    throw Failure(ExitCode::failed, "the records of the main database cannot be loaded",
                  "Look for damage with: cmpntctl db check");
}

// --- hotpatch find -------------------------------------------------------------

std::vector<std::string> answers;
constexpr int32_t out_of_memory = 1;

int32_t take_answer(const char *filled) {
    try {
        answers.push_back(filled);
        return 0;
    } catch (...) {  // the library between us and main knows no exceptions
        return out_of_memory;
    }
}

void ask(const Criteria &criteria) {
    answers.clear();
    const int32_t result = libcmpnt_db_find(criteria.text().c_str(), take_answer);
    if (result == -2) {
        fail_to_load();
    }
    if (result != 0) {
        throw Failure(ExitCode::failed,
                      "the lookup failed with " + std::to_string(result) + " after " +
                          std::to_string(answers.size()) + " answers",
                      "Look for the reason with: cmpntctl log show");
    }
}

Report find(const Session &session, const std::string &text) {
    const Criteria criteria(text);
    look_for_database();
    wait_for_lock(session);
    ask(criteria);
    Report report;
    report.data = {{"criteria", text}, {"answers", Json::array()}};
    for (const std::string &answer : answers) {
        Json values = Json::array();
        for (const auto &[key, value] : criteria.take_apart(answer)) {
            values.push_back({{"key", key}, {"value", value}});
        }
        report.data["answers"].push_back({{"text", answer}, {"items", values}});
        report.text += printable(answer) + "\n";
    }
    report.code = answers.empty() ? ExitCode::nothing : ExitCode::done;
    return report;
}

void add_find(CLI::App &group, Session &session) {
    CLI::App *command =
        group.add_subcommand("find", "Look up records by criteria, and fill in their fields");
    const auto criteria = std::make_shared<std::string>();
    command->add_option("CRITERIA", *criteria, "Items KEY:VALUE, joined by \"#\"")->required();
    command->footer(
        "A value \"*\" is filled in from the record, any other is a condition; it takes one of\n"
        "each. Keys: Is_hotpatch (1 or 0), Package, Version (a condition only), State (a word),\n"
        "Pkg_path, Hotpatch_file, Hotpatch_target_pkg, Hotpatch_target_path. Prints an answer a\n"
        "line; the exit code is 2 without any.\n\n"
        "Example:\n  cmpntctl hotpatch find \"Package:*#State:*#Is_hotpatch:1\"");
    command->callback(
        [&session, criteria] { finish(session, "hotpatch find", find(session, *criteria)); });
}

// --- hotpatch check ------------------------------------------------------------

struct Target {
    std::string path, shipped_md5, stripped_md5;
};

// The record that the library's check goes by.
std::optional<Target> target_of(const std::string &pkg_path) {
    cmpnt_recycle_upgrade_list(CMPNT_HP_LIST);
    if (cmpnt_get_database_hp_list() != 0) {
        fail_to_load();
    }
    std::optional<Target> target;
    for (cmpnt_list_head *link = cmpnt_hp_list.next; link != &cmpnt_hp_list && !target;
         link = link->next) {
        const cmpnt_upgrade_value &record = CMPNT_UPGRADE_NODE(link)->value;
        if (pkg_path == record.cur_pkg_path) {
            target = Target{record.hotpatch_target_path, record.hotpatch_target_md5,
                            record.hotpatch_target_strip_md5};
        }
    }
    cmpnt_recycle_upgrade_list(CMPNT_HP_LIST);
    return target;
}

const char *state_of(const Target &target, const FileDigest &digest) {
    return !digest.error.empty()               ? "unreadable"
           : digest.md5 == target.shipped_md5  ? "as shipped"
           : digest.md5 == target.stripped_md5 ? "stripped"
                                               : "changed";
}

Report check(const Session &session, const std::string &pkg_path) {
    look_for_database();
    wait_for_lock(session);
    const std::optional<Target> target = target_of(pkg_path);
    if (!target) {
        throw Failure(ExitCode::nothing, "no record has the package path " + printable(pkg_path),
                      "Nothing is known that its target could be held against; see: cmpntctl list");
    }
    wait_for_lock(session);
    const int32_t result = libcmpnt_db_check_hp_tgt_md5(pkg_path.c_str());
    if (result == -2) {
        fail_to_load();
    }
    const FileDigest digest = digest_of(target->path);
    const std::string state = state_of(*target, digest);
    const bool may_be_patched = result == 0;
    Report report;
    report.data = {{"package_path", pkg_path},
                   {"target", target->path},
                   {"state", state},
                   {"may_be_patched", may_be_patched},
                   {"md5", digest.md5},
                   {"shipped_md5", target->shipped_md5},
                   {"stripped_md5", target->stripped_md5}};
    report.text = printable(target->path) + ": " + state +
                  (digest.error.empty() ? "" : " (" + digest.error + ")") +
                  (may_be_patched ? ", may be patched\n" : ", must not be patched\n");
    report.code = may_be_patched ? ExitCode::done : ExitCode::failed;
    return report;
}

void add_check(CLI::App &group, Session &session) {
    CLI::App *command = group.add_subcommand(
        "check", "Check that the target of a hot patch is the file that it was built against");
    const auto path = std::make_shared<std::string>();
    command->add_option("PATH", *path, "The hot patch's package path, as it is recorded")
        ->required();
    command->footer(
        "The target's MD5 must be the one recorded as shipped, or as stripped of its symbols.\n"
        "The exit code is 1 when it is neither, 2 when no record has the path.\n\n"
        "Example:\n  cmpntctl hotpatch check /data/cmpnt/opkg/download/hp_bash/bash_hp1.ipk");
    command->callback(
        [&session, path] { finish(session, "hotpatch check", check(session, *path)); });
}

}  // namespace

void add_hotpatch(CLI::App &app, Session &session) {
    CLI::App *group = app.add_subcommand("hotpatch", "Look up hot patches and check their targets");
    group->require_subcommand(1);
    group->footer("Example:\n  cmpntctl hotpatch find \"Package:*#State:*#Is_hotpatch:1\"");
    add_find(*group, session);
    add_check(*group, session);
}

}  // namespace cmpntctl
