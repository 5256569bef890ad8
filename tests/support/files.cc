#include "tests/support/files.hh"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace fs = std::filesystem;

std::string read_file(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

void write_file(const std::string &path, const std::string &text) {
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << text;
}

void set_written_long_ago(const std::string &path) {
    const timespec times[] = {{1000, 1}, {1000, 1}};
    utimensat(AT_FDCWD, path.c_str(), times, 0);
}

void make_directories(const std::string &path) { fs::create_directories(path); }

void remove_tree(const std::string &path) {
    std::error_code ignored;
    fs::remove_all(path, ignored);
}

bool exists(const std::string &path) {
    struct stat status;
    return lstat(path.c_str(), &status) == 0;
}

int mode_of(const std::string &path) {
    struct stat status;
    return lstat(path.c_str(), &status) == 0 ? static_cast<int>(status.st_mode & 07777) : -1;
}

long long size_of(const std::string &path) {
    struct stat status;
    return lstat(path.c_str(), &status) == 0 ? static_cast<long long>(status.st_size) : -1;
}

std::vector<std::string> names_in(const std::string &directory) {
    std::vector<std::string> names;
    std::error_code ignored;
    for (const auto &entry : fs::directory_iterator(directory, ignored)) {
        names.push_back(entry.path().filename());
    }
    std::sort(names.begin(), names.end());
    return names;
}

int open_descriptors() {
    int count = 0;
    for (int fd = 0; fd < 1024; fd++) {
        struct stat status;
        count += fstat(fd, &status) == 0;
    }
    return count;
}
