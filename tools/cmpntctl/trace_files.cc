#include "trace_files.hh"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <memory>

namespace cmpntctl {
namespace {

// What the package manager printed: no messages, and shown only to who asks for it.
constexpr char package_manager[] = "cmpnt_upgrade_opkg";

// Rotated files stay far below; of a larger one, which something else wrote, the end is shown.
constexpr off_t largest_read = 0x400000;

bool ends_with(const std::string &text, const std::string &end) {
    return text.size() >= end.size() &&
           text.compare(text.size() - end.size(), end.size(), end) == 0;
}

// Empty: no trace file.
std::string thread_of(std::string name) {
    if (ends_with(name, "_bak")) {
        name.resize(name.size() - 4);
    }
    if (name.size() < 6 || name[0] != '.' || !ends_with(name, ".log")) {
        return "";
    }
    return name.substr(1, name.size() - 5);
}

}  // namespace

std::vector<std::string> trace_file_names() {
    std::vector<std::string> names;
    const std::unique_ptr<DIR, int (*)(DIR *)> directory(opendir(trace_directory), closedir);
    while (const dirent *entry = directory ? readdir(directory.get()) : nullptr) {
        if (!thread_of(entry->d_name).empty()) {
            names.push_back(entry->d_name);
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

bool TraceFiles::is_wanted(const std::string &thread) const {
    return thread_.empty() ? thread != package_manager : thread == thread_;
}

void TraceFiles::open_new() {
    for (const std::string &name : trace_file_names()) {
        const std::string thread = thread_of(name);
        if (!is_wanted(thread)) {
            continue;
        }
        File file;
        const std::string path = std::string(trace_directory) + "/" + name;
        file.descriptor =
            FileDescriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW));
        struct stat status;
        if (!file.descriptor || fstat(file.descriptor.get(), &status) != 0 ||
            !S_ISREG(status.st_mode)) {
            continue;
        }
        file.last.thread = thread;
        file.offset = std::max<off_t>(0, status.st_size - largest_read);
        files_.try_emplace({status.st_dev, status.st_ino}, std::move(file));
    }
}

void TraceFiles::read(File &file, std::vector<TraceEntry> &entries) {
    struct stat status;
    if (fstat(file.descriptor.get(), &status) == 0 && status.st_size < file.offset) {
        file.offset = 0;  // emptied and written anew
    }
    std::string text;
    char buffer[0x4000];
    for (ssize_t count;
         (count = pread(file.descriptor.get(), buffer, sizeof(buffer), file.offset)) > 0;) {
        text.append(buffer, static_cast<size_t>(count));
        file.offset += count;
    }
    for (TraceEntry &entry : parse_trace(text, file.last)) {
        file.last = entry;
        if (kind_.empty() || entry.kind == kind_) {
            entries.push_back(std::move(entry));
        }
    }
}

std::vector<TraceEntry> TraceFiles::read_new() {
    open_new();
    std::vector<TraceEntry> entries;
    for (auto file = files_.begin(); file != files_.end();) {
        read(file->second, entries);
        struct stat status;
        const bool is_gone =
            fstat(file->second.descriptor.get(), &status) != 0 || status.st_nlink == 0;
        file = is_gone ? files_.erase(file) : std::next(file);
    }
    std::stable_sort(entries.begin(), entries.end(),
                     [](const TraceEntry &a, const TraceEntry &b) { return a.time < b.time; });
    return entries;
}

}  // namespace cmpntctl
