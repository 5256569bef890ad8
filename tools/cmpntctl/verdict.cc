#include "verdict.hh"

#include <stdint.h>

#include <filesystem>

#include "command.hh"
#include "guard.hh"
#include "libcmpnt_db.h"
#include "regular_file.hh"
#include "trace_errors.hh"

namespace cmpntctl {
namespace {

constexpr char lock_name[] = "/.cmpntctl_verify_lock";

// What is left in it by a package that was refused would be checked with the next one.
constexpr char unpacked_files[] = "/var/cache/opkg/cmpnt_safe_verify/safe_data_tmp";

bool is_verification_on(const std::string &path) {
    return cmpnt_safe_verify_enable(reinterpret_cast<uintptr_t>(path.c_str()), 0, 0, 0) != 0;
}

// As the library takes it: from the last "." of the whole path on.
std::string suffix_of(const std::string &path) {
    char suffix[CMPNT_PATH_SIZE] = {};
    get_file_type(path.c_str(), suffix, sizeof(suffix));
    return suffix;
}

PackageKind kind_of(const std::string &suffix) {
    return suffix == ".ipk"   ? PackageKind::base
           : suffix == ".deb" ? PackageKind::patch
                              : PackageKind::unknown;
}

FileDescriptor take_lock() {
    const int32_t fd = cmpnt_process_is_running(lock_name);
    if (fd == 0) {
        throw Failure(ExitCode::lock_busy, "another verification is running",
                      "Wait until it has ended.");
    }
    if (fd < 0) {
        throw Failure(ExitCode::failed, "no lock file can be made in the temporary directory",
                      "Set TMPDIR to a folder where you may write.");
    }
    return FileDescriptor(fd);
}

void judge_readable(Judgement &judgement) {
    const std::string suffix = suffix_of(judgement.path);
    judgement.kind = kind_of(suffix);
    if (!is_verification_on(judgement.path)) {
        judgement.verdict = Verdict::not_checked;
        judgement.reason = "verification is off";
        return;
    }
    const TraceMark mark;
    const int32_t result = cmpnt_safe_verify(judgement.path.c_str(), 0, 0, 0);
    judgement.errors = mark.errors();
    if (result != 0) {
        judgement.verdict = Verdict::refused;
        judgement.reason = suffix.empty()             ? "its name has no suffix"
                           : judgement.errors.empty() ? "see the trace: cmpntctl log show"
                                                      : judgement.errors.front();
    } else if (judgement.kind == PackageKind::unknown) {
        judgement.verdict = Verdict::not_checked;
        judgement.reason = "only .ipk and .deb are checked, and its suffix is " + suffix;
    } else {
        judgement.verdict = Verdict::passed;
    }
}

}  // namespace

const char *word_of(Verdict verdict) {
    switch (verdict) {
        case Verdict::passed:
            return "passed";
        case Verdict::not_checked:
            return "not checked";
        case Verdict::unreadable:
            return "unreadable";
        default:
            return "refused";
    }
}

std::string package_path(const std::string &file) {
    const std::string path = std::filesystem::absolute(file).string();
    guard_path("the package's path", path);
    return path;
}

Verification::Verification() : lock_(take_lock()) {
    cmpnt_remove(unpacked_files);
    cmpnt_sign_verify_init();
}

Verification::~Verification() {
    cmpnt_free_sign_verify();
    cmpnt_remove(unpacked_files);
}

Judgement Verification::judge(const std::string &file) {
    Judgement judgement;
    judgement.file = file;
    judgement.path = package_path(file);
    if (const FileProblem problem = look_at_regular_file(judgement.path)) {
        judgement.verdict = Verdict::unreadable;
        judgement.is_missing = problem.is_missing;
        judgement.reason = problem.text;
    } else {
        judge_readable(judgement);
    }
    return judgement;
}

}  // namespace cmpntctl
