#include "verify.hh"

#include <algorithm>
#include <memory>

#include "explanation.hh"
#include "table.hh"
#include "verdict.hh"

namespace cmpntctl {
namespace {

struct VerifyArguments {
    std::vector<std::string> files;
    bool explain = false;
    bool strict = false;
};

Json data_of(const Judgement &judgement) {
    Json data = {{"file", judgement.file}, {"verdict", word_of(judgement.verdict)}};
    if (!judgement.reason.empty()) {
        data["reason"] = judgement.reason;
    }
    data["errors"] = judgement.errors;
    return data;
}

// The worse of the code so far and that of one more file: a refused package outweighs a missing one.
ExitCode worse(ExitCode code, const Judgement &judgement, bool strict) {
    switch (judgement.verdict) {
        case Verdict::passed:
            return code;
        case Verdict::not_checked:
            return strict ? ExitCode::failed : code;
        case Verdict::unreadable:
            return judgement.is_missing && code != ExitCode::failed ? ExitCode::nothing
                                                                    : ExitCode::failed;
        default:
            return ExitCode::failed;
    }
}

// Two columns, and the reason as long as it is: it is what is looked for.
std::string line_of(const Judgement &judgement, size_t width) {
    constexpr size_t verdict_width = 13;
    const std::string file = printable(judgement.file), verdict = word_of(judgement.verdict);
    std::string line = file + std::string(width - columns_of(file) + 2, ' ') + verdict;
    if (!judgement.reason.empty()) {
        line += std::string(verdict_width - verdict.size(), ' ') + printable(judgement.reason);
    }
    return line + "\n";
}

std::string heading_of(const Judgement &judgement) {
    const std::string reason = judgement.errors.empty() ? judgement.reason : "";
    return printable(judgement.file) + ": " + word_of(judgement.verdict) +
           (reason.empty() ? "" : " (" + printable(reason) + ")") + "\n";
}

Report verify(const VerifyArguments &arguments) {
    size_t width = 0;
    for (const std::string &file : arguments.files) {
        package_path(file);  // before anything is done
        width = std::max(width, columns_of(printable(file)));
    }
    Report report;
    for (const std::string &file : arguments.files) {
        Verification verification;
        const Judgement judgement = verification.judge(file);
        Json data = data_of(judgement);
        if (arguments.explain) {
            const Explanation explanation = explain(judgement);
            report.text += heading_of(judgement) + explanation.text;
            data["explanation"] = explanation.data;
        } else {
            report.text += line_of(judgement, width);
        }
        report.data["files"].push_back(data);
        report.code = worse(report.code, judgement, arguments.strict);
    }
    return report;
}

}  // namespace

void add_verify(CLI::App &app, Session &session) {
    CLI::App *command =
        app.add_subcommand("verify", "Check the signatures and digests of packages");
    const auto arguments = std::make_shared<VerifyArguments>();
    command->add_option("FILE", arguments->files, "Packages: .ipk, or .deb in its patch's folder")
        ->required();
    command->add_flag("--explain", arguments->explain,
                      "Say what was held against what, and why a package is refused");
    command->add_flag("--strict", arguments->strict, "Exit with 1 also for what is not checked");
    command->footer(
        "\"not checked\" is said where the library lets a file pass without a look: while\n"
        "verification is off, and for other suffixes. The exit code is 0 when every file was\n"
        "passed or not checked, 2 when one is missing, else 1. Base packages are unpacked into\n"
        "/var/cache/opkg/cmpnt_safe_verify/safe_data_tmp, which is removed before and after.\n\n"
        "Example:\n  cmpntctl verify --explain /data/cmpnt/opkg/download/bash_5.2.ipk");
    command->callback([&session, arguments] { finish(session, "verify", verify(*arguments)); });
}

void add_verify_commands(CLI::App &app, Session &session) {
    add_verify(app, session);
    add_whitelist(app, session);
    add_hotpatch(app, session);
}

}  // namespace cmpntctl
