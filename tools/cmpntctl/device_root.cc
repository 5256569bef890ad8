#include "device_root.hh"

#include <filesystem>

#include "command.hh"

namespace fs = std::filesystem;

namespace cmpntctl {
namespace {

constexpr const char *folders_of_a_device[] = {
    "var/lib/opkg/info",
    "var/lib/opkg_bak/info",
    "var/cache/opkg/backup",
    "var/cache/opkg/download",
    "var/cache/opkg/debug",
    "var/safe-verify/key",
    "var/safe-verify/signature",
    "var/safe-verify/sm3",
    "data/cmpnt/opkg/download",
    "tmp",
    "opt",
};

// As mkdir gives it to /tmp: anybody may write, only the owner removes.
constexpr fs::perms mode_of_tmp = fs::perms::all | fs::perms::sticky_bit;

void refuse_folder_in_use(const std::string &directory) {
    const bool is_folder = fs::is_directory(directory);
    if (fs::exists(directory) && (!is_folder || !fs::is_empty(directory))) {
        throw Failure(ExitCode::failed, directory + (is_folder ? " is not empty" : " is no folder"),
                      "Give the name of a folder that is empty or not there yet.");
    }
}

}  // namespace

bool is_private(const std::string &path) {
    for (const std::string folder : private_folders) {
        if (path == folder || path.compare(0, folder.size() + 1, folder + "/") == 0) {
            return true;
        }
    }
    return false;
}

std::vector<std::string> create_device_root(const std::string &directory) {
    try {
        const fs::path root = directory;
        refuse_folder_in_use(directory);
        std::vector<std::string> made;
        for (const char *folder : folders_of_a_device) {
            fs::create_directories(root / folder);
            made.push_back(folder);
        }
        fs::permissions(root / "tmp", mode_of_tmp);
        return made;
    } catch (const fs::filesystem_error &error) {
        throw Failure(ExitCode::failed,
                      "cannot make " + error.path1().string() + ": " + error.code().message(),
                      "Choose a place where you may write.");
    }
}

std::string open_device_root(const std::string &directory) {
    std::error_code error;
    const fs::path root = fs::canonical(directory, error);
    if (error) {
        throw Failure(ExitCode::nothing, "no device root " + directory + ": " + error.message(),
                      "Make one with: cmpntctl device new " + directory);
    }
    for (const char *folder : private_folders) {
        if (!fs::is_directory(root.string() + folder, error)) {
            throw Failure(ExitCode::failed,
                          directory + " is no device root: it has no folder " + (folder + 1),
                          "Make one with: cmpntctl device new FOLDER");
        }
    }
    return root.string();
}

}  // namespace cmpntctl
