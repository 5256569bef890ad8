#include "history.hh"

#include <fcntl.h>
#include <libcmpnt_db.h>
#include <pwd.h>
#include <stdio.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <time.h>

#include <fstream>

#include "file_descriptor.hh"

namespace cmpntctl {
namespace {

constexpr char directory[] = "/var/cache/opkg";
constexpr char history_path[] = "/var/cache/opkg/.cmpntctl_history";
constexpr char backup_path[] = "/var/cache/opkg/.cmpntctl_history_bak";
constexpr off_t full_size = 0x40000;

std::string time_now() {
    const time_t now = time(nullptr);
    struct tm local = {};
    localtime_r(&now, &local);
    char text[40] = "";
    strftime(text, sizeof(text), "%Y-%m-%dT%H:%M:%S%z", &local);
    return text;
}

std::string user_name() {
    const struct passwd *entry = getpwuid(getuid());
    return entry != nullptr ? entry->pw_name : std::to_string(getuid());
}

FileDescriptor open_history() {
    return FileDescriptor(open(
        history_path, O_RDWR | O_APPEND | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0640));
}

// Of several processes that find the file full, the one that locks it renames it; the others see by
// its number that it is no longer the one they opened, and append to it all the same: no line is
// lost.
FileDescriptor open_with_room() {
    FileDescriptor file = open_history();
    struct stat mine, named;
    if (!file || fstat(file.get(), &mine) != 0 || !S_ISREG(mine.st_mode)) {
        return FileDescriptor();
    }
    if (mine.st_size < full_size || flock(file.get(), LOCK_EX | LOCK_NB) != 0 ||
        lstat(history_path, &named) != 0 || named.st_ino != mine.st_ino ||
        rename(history_path, backup_path) != 0) {
        return file;
    }
    return open_history();
}

// A line that a power cut tore must not take this one with it.
bool ends_in_the_middle_of_a_line(int fd) {
    struct stat status;
    char last = '\n';
    return fstat(fd, &status) == 0 && status.st_size > 0 &&
           pread(fd, &last, 1, status.st_size - 1) == 1 && last != '\n';
}

void append_line(std::string line) {
    cmpnt_mkdir(directory);
    const FileDescriptor file = open_with_room();
    if (!file) {
        return;
    }
    if (ends_in_the_middle_of_a_line(file.get())) {
        line.insert(0, "\n");
    }
    // One write: lines of several processes do not mix.
    if (write(file.get(), line.data(), line.size()) == static_cast<ssize_t>(line.size())) {
        fsync(file.get());
    }
}

void read_lines(const char *path, std::vector<Json> &entries) {
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        Json entry = Json::parse(line, nullptr, false);
        if (entry.is_object()) {
            entries.push_back(std::move(entry));
        }
    }
}

}  // namespace

void record_history(const std::string &operation, Json details, ExitCode code) noexcept {
    try {
        const Json entry = {{"schema_version", 1},           {"time", time_now()},
                            {"user", user_name()},           {"pid", getpid()},
                            {"operation", operation},        {"details", std::move(details)},
                            {"code", static_cast<int>(code)}};
        append_line(entry.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n");
    } catch (...) {
        // What was to be recorded is done: a lost line must not make it a failure.
    }
}

std::vector<Json> read_history() {
    std::vector<Json> entries;
    read_lines(backup_path, entries);
    read_lines(history_path, entries);
    return entries;
}

}  // namespace cmpntctl
