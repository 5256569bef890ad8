// Whether verification would look at an installed file, and by which line of which list it passes.
#include <filesystem>
#include <memory>

#include "libcmpnt_db.h"
#include "package_tree.hh"
#include "table.hh"
#include "verify.hh"
#include "whitelist.hh"

namespace cmpntctl {
namespace {

void guard_installed_path(const std::string &path) {
    if (path.empty() || path[0] != '/') {
        throw Failure(ExitCode::usage, "\"" + printable(path) + "\" is no path from the root",
                      "Give the path where the file is installed, such as /usr/bin/bash.");
    }
}

Json data_of(const char *list, bool is_listed, const std::vector<WhitelistLine> &lines) {
    Json data = {{"list", list}, {"is_listed", is_listed}, {"lines", Json::array()}};
    for (const WhitelistLine &line : lines) {
        data["lines"].push_back({{"number", line.number}, {"path", line.path}});
        if (!line.client.empty()) {
            data["lines"].back()["client"] = line.client;
        }
    }
    return data;
}

std::string text_of(const std::string &path, bool is_listed,
                    const std::vector<WhitelistLine> &lines) {
    std::string text = is_listed ? "yes" : "no";
    for (const WhitelistLine &line : lines) {
        text +=
            ", by line " + std::to_string(line.number) +
            (line.client.empty() ? "" : " of the client " + printable(line.client)) +
            (line.path == path ? "" : ", of which it is the beginning: " + printable(line.path));
    }
    return text;
}

std::string trust_of(bool is_trusted, bool is_checked) {
    return is_checked   ? "yes, and packages are checked for files there"
           : is_trusted ? "yes, by the beginning of its name alone: packages are not checked "
                          "for files there"
                        : "no";
}

Report test_path(const std::string &path) {
    guard_installed_path(path);
    const bool is_trusted = cmpnt_is_safe_verify_dir(path.c_str()) == 1;
    const bool is_checked = is_in_checked_directory(path);
    const bool is_signed = std::filesystem::exists(global_whitelist_signature);
    const bool is_global = file_exist_in_global_whitelist(path.c_str()) == 1;
    const bool is_dynamic = file_exist_in_dynamic_whitelist(path.c_str(), 0) == 1;
    const std::vector<WhitelistLine> global = find_in_global_whitelist(path);
    const std::vector<WhitelistLine> dynamic = find_in_dynamic_whitelist(path);

    Report report;
    report.data = {{"path", path},
                   {"is_trusted", is_trusted},
                   {"is_checked", is_checked},
                   {"global", data_of(global_whitelist_path, is_global, global)},
                   {"dynamic", data_of(dynamic_whitelist_path, is_dynamic, dynamic)}};
    report.data["global"]["is_signed"] = is_signed;
    report.text =
        printable(path) + "\n  trusted directory  " + trust_of(is_trusted, is_checked) +
        "\n  global whitelist   " + text_of(path, is_global, global) +
        (is_signed || global.empty() ? "" : "; the list has no signature and counts for nothing") +
        "\n  dynamic whitelist  " + text_of(path, is_dynamic, dynamic) + "\n";
    report.code = is_global || is_dynamic ? ExitCode::done : ExitCode::nothing;
    return report;
}

}  // namespace

void add_whitelist(CLI::App &app, Session &session) {
    CLI::App *group = app.add_subcommand("whitelist", "Ask for files that pass with any digest");
    group->require_subcommand(1);
    group->footer("Example:\n  cmpntctl whitelist test /usr/bin/bash");
    CLI::App *command = group->add_subcommand(
        "test",
        "Say whether a file is in a trusted directory, and on which whitelist by which line");
    const auto path = std::make_shared<std::string>();
    command->add_option("PATH", *path, "Where the file is installed; it need not exist")
        ->required();
    command->footer(
        "The exit code is 0 when it is on a whitelist, else 2. The signature of the global\n"
        "list is looked for and not checked here: that does verify --explain.\n\n"
        "Example:\n  cmpntctl whitelist test /usr/bin/bash");
    command->callback([&session, path] { finish(session, "whitelist test", test_path(*path)); });
}

}  // namespace cmpntctl
