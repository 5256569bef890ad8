// The small commands: versions, control files, digests, space.
#include <errno.h>
#include <string.h>
#include <sys/statvfs.h>

#include <memory>
#include <vector>

#include "command.hh"
#include "control_file.hh"
#include "file_digest.hh"
#include "libcmpnt_db.h"
#include "table.hh"

namespace cmpntctl {
namespace {

// --- version compare -----------------------------------------------------------

const char *word_of(int32_t order) {
    switch (order) {
        case CMPNT_VERSION_NEWER:
            return "newer";
        case CMPNT_VERSION_EQUAL:
            return "equal";
        case CMPNT_VERSION_OLDER:
            return "older";
        default:
            throw Failure(ExitCode::failed, "the versions cannot be compared",
                          "Look for the reason with: cmpntctl log show");
    }
}

Report compare_versions(const std::string &a, const std::string &b) {
    const char *result = word_of(cmpnt_version_compare(a.c_str(), b.c_str()));
    Report report;
    report.data = {{"a", a}, {"b", b}, {"result", result}};
    report.text = std::string(result) + "\n";
    return report;
}

void add_version(CLI::App &app, Session &session) {
    CLI::App *group = app.add_subcommand("version", "Compare versions of packages");
    group->require_subcommand(1);
    group->footer("Example:\n  cmpntctl version compare 5.2.15-2 5.2.15-2+smu1");
    CLI::App *command = group->add_subcommand(
        "compare", "Say whether version A is newer or older than B, or equal to it");
    const auto versions = std::make_shared<std::pair<std::string, std::string>>();
    command->add_option("A", versions->first, "A version")->required();
    command->add_option("B", versions->second, "What it is compared with")->required();
    command->footer(
        "Numbers compare by value, \"~\" sorts before the end, letters before other\n"
        "characters. Prints newer, equal or older; the exit code is 0 for all three.\n\n"
        "Example:\n  cmpntctl version compare 1.10 1.9   # newer");
    command->callback([&session, versions] {
        finish(session, "version compare", compare_versions(versions->first, versions->second));
    });
}

// --- control show --------------------------------------------------------------

std::string text_of(const ControlFile &control) {
    const std::vector<std::pair<std::string, std::string>> lines = {
        {"Package", control.package},
        {"Version", control.version},
        {"Architecture", control.architecture},
        {"Description", control.description},
        {"Installed-Size", std::to_string(control.installed_size)},
        {"Installed-Time", std::to_string(control.installed_time)},
        {"MD5Sum", control.md5_sum},
        {"Reboot", control.is_reboot ? "yes" : "no"},
        {"Serial", control.serial},
        {"Card_type", control.card_type},
    };
    constexpr size_t width = 16;
    std::string text;
    for (const auto &[field, value] : lines) {
        text += field + std::string(width - field.size(), ' ') +
                (value.empty() ? "-" : printable(value)) + "\n";
    }
    return text;
}

Report show_control(const std::string &path) {
    const ControlFile control = read_control_file(path);
    Report report;
    report.data = {{"file", path},
                   {"package", control.package},
                   {"version", control.version},
                   {"architecture", control.architecture},
                   {"description", control.description},
                   {"installed_size", control.installed_size},
                   {"installed_time", control.installed_time},
                   {"md5_sum", control.md5_sum},
                   {"is_reboot", control.is_reboot},
                   {"serial", control.serial},
                   {"card_type", control.card_type}};
    report.text = text_of(control);
    return report;
}

void add_control(CLI::App &app, Session &session) {
    CLI::App *group = app.add_subcommand("control", "Look at control files of patches");
    group->require_subcommand(1);
    group->footer("Example:\n  cmpntctl control show control");
    CLI::App *command =
        group->add_subcommand("show", "Show what the library reads from a control file");
    const auto path = std::make_shared<std::string>();
    command->add_option("FILE", *path, "The control file of an SMU or patch")->required();
    command->footer("Example:\n  cmpntctl control show unpacked/control --json");
    command->callback([&session, path] { finish(session, "control show", show_control(*path)); });
}

// --- md5 -----------------------------------------------------------------------

void add_digest(Report &report, const std::string &path) {
    const FileDigest digest = digest_of(path);
    Json file = {{"file", path}};
    if (digest.error.empty()) {
        file["md5"] = digest.md5;
        report.text += digest_line(digest.md5, path);
    } else {
        file["error"] = digest.error;
        fprintf(stderr, "cmpntctl: %s: %s\n", printable(path).c_str(), digest.error.c_str());
        report.code = digest.is_missing && report.code != ExitCode::failed ? ExitCode::nothing
                                                                           : ExitCode::failed;
    }
    report.data["files"].push_back(file);
}

void add_md5(CLI::App &app, Session &session) {
    CLI::App *command = app.add_subcommand("md5", "Print the MD5 digests of files");
    const auto paths = std::make_shared<std::vector<std::string>>();
    command->add_option("FILE", *paths, "Regular files")->required();
    command->footer(
        "Prints lines that md5sum -c understands. MD5 finds accidents, not attackers.\n"
        "The exit code is 2 when a file is missing, 1 when one cannot be read.\n\n"
        "Example:\n  cmpntctl md5 /opt/bin/bash");
    command->callback([&session, paths] {
        Report report;
        for (const std::string &path : *paths) {
            add_digest(report, path);
        }
        finish(session, "md5", report);
    });
}

// --- space ---------------------------------------------------------------------

Failure not_measured(const std::string &path) {
    return Failure(errno == ENOENT ? ExitCode::nothing : ExitCode::failed,
                   path + ": " + strerror(errno), "Give a path that exists.");
}

Report measure_space(const std::string &path) {
    struct statvfs space;
    if (statvfs(path.c_str(), &space) != 0) {
        throw not_measured(path);
    }
    const uint64_t block = space.f_frsize;
    const uint64_t total = block * space.f_blocks / 1024;
    const uint64_t available = block * space.f_bavail / 1024;
    const uint32_t counted = cmpnt_get_available_kbytes(path.c_str());
    Report report;
    report.data = {{"path", path},
                   {"total_kbytes", total},
                   {"available_kbytes", available},
                   {"library_kbytes", counted}};
    report.text = path + ": " + std::to_string(available) + " of " + std::to_string(total) +
                  " KiB available\n";
    if (available > UINT32_MAX) {
        report.text += "The library counts modulo 4 TiB and takes this for " +
                       std::to_string(counted) + " KiB.\n";
    }
    return report;
}

void add_space(CLI::App &app, Session &session) {
    CLI::App *command =
        app.add_subcommand("space", "Say how much may still be written to a file system");
    const auto path = std::make_shared<std::string>();
    command->add_option("PATH", *path, "Any path on it")->required();
    command->footer(
        "Flushes all file systems first, as the library does. With --json, library_kbytes is\n"
        "what the library counts.\n\n"
        "Example:\n  cmpntctl space /data/cmpnt/opkg/download");
    command->callback([&session, path] { finish(session, "space", measure_space(*path)); });
}

}  // namespace

void add_file_commands(CLI::App &app, Session &session) {
    add_version(app, session);
    add_control(app, session);
    add_md5(app, session);
    add_space(app, session);
}

}  // namespace cmpntctl
