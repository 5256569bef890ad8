#include "package_tree.hh"

#include <errno.h>
#include <fcntl.h>
#include <spawn.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>

#include <filesystem>

#include "command.hh"

extern char **environ;

namespace fs = std::filesystem;

namespace cmpntctl {
namespace {

constexpr char inner_archive[] = "data.tar.gz";

std::string make_folder() {
    const char *parent = getenv("TMPDIR");
    std::string path = std::string(parent != nullptr ? parent : "/tmp") + "/cmpntctl-verify.XXXXXX";
    if (mkdtemp(path.data()) == nullptr) {
        throw Failure(ExitCode::failed, path + " cannot be made: " + strerror(errno),
                      "Set TMPDIR to a folder where you may write.");
    }
    return path;
}

// No shell: the names reach tar as they are. What it says is not for the report.
bool unpack(const std::string &archive, const std::string &folder) {
    std::error_code error;
    if (!fs::is_regular_file(fs::symlink_status(archive, error)) ||
        !fs::create_directory(folder, error)) {
        return false;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    const char *words[] = {"tar", "-xf", archive.c_str(), "-C", folder.c_str(), nullptr};
    pid_t process = -1;
    const int spawned =
        posix_spawnp(&process, words[0], &actions, nullptr, const_cast<char **>(words), environ);
    posix_spawn_file_actions_destroy(&actions);
    int status = -1;
    while (spawned == 0 && waitpid(process, &status, 0) < 0 && errno == EINTR) {}
    return spawned == 0 && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// A package may bring folders that not even their owner may enter.
void remove_tree(const std::string &folder) {
    std::error_code error;
    fs::remove_all(folder, error);
    if (!error) {
        return;
    }
    fs::recursive_directory_iterator entries(folder, error), end;
    for (; !error && entries != end; entries.increment(error)) {
        if (fs::is_directory(entries->symlink_status(error))) {
            fs::permissions(entries->path(), fs::perms::owner_all, fs::perm_options::add, error);
        }
    }
    fs::remove_all(folder, error);
}

}  // namespace

bool is_in_checked_directory(const std::string &path) {
    for (const std::string directory : checked_directories) {
        if (path.compare(0, directory.size() + 1, directory + "/") == 0) {
            return true;
        }
    }
    return false;
}

PackageTree::PackageTree(const std::string &package) : folder_(make_folder()) {
    const std::string outer = folder_ + "/outer", inner = folder_ + "/inner";
    if (!unpack(fs::canonical(package).string(), outer) ||
        !unpack(outer + "/" + inner_archive, inner)) {
        remove_tree(folder_);
        throw Failure(ExitCode::failed, package + " cannot be unpacked",
                      "A package is an archive for tar with a data.tar.gz in it.");
    }
    // The library unpacks the one beside the other, and the inner one over the outer one.
    collect(outer, true);
    collect(inner, false);
}

PackageTree::~PackageTree() { remove_tree(folder_); }

void PackageTree::collect(const std::string &tree, bool checked_only) {
    std::error_code error;
    fs::recursive_directory_iterator entries(tree, fs::directory_options::skip_permission_denied,
                                             error);
    for (const fs::recursive_directory_iterator end; !error && entries != end;
         entries.increment(error)) {
        const fs::file_status status = entries->symlink_status(error);
        if (!fs::is_regular_file(status) && !fs::is_symlink(status)) {
            continue;
        }
        const std::string unpacked = entries->path().string();
        const std::string installed = unpacked.substr(tree.size());
        if (!checked_only || is_in_checked_directory(installed)) {
            files_[installed] = {unpacked, fs::is_symlink(status)};
        }
    }
}

}  // namespace cmpntctl
