// The dynamic whitelist: changed under a lock, and replaced as a whole, so that its readers need none.
#include "platform/reference/whitelist_service.hh"

#include <sys/file.h>

#include <algorithm>

#include "p_utils.pb-c.h"
#include "platform/reference/reference_platform.h"
#include "platform/reference/regular_file.hh"

namespace {

constexpr char list_directory[] = "/var/safe-verify/sm3";
constexpr char list_file[] = "/var/safe-verify/sm3/global-d-white-sm3.hash";
constexpr char new_list_file[] = "/var/safe-verify/sm3/global-d-white-sm3.hash.new";
// Readers take lines of 1023 characters, with the newline.
constexpr size_t longest_line = 1023;
constexpr size_t largest_list = size_t(64) << 20;

struct Entry {
    std::string path;
    std::string client;

    std::string line() const { return path + "," + client + "\n"; }
    bool fits() const {
        return path.compare(0, 1, "/") == 0 && !client.empty() &&
               (path + client).find_first_of(",\n") == std::string::npos &&
               line().size() <= longest_line;
    }
};

class Descriptor {
public:
    explicit Descriptor(int fd) : fd_(fd) {}
    ~Descriptor() { finish(); }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    int get() const { return fd_; }
    bool finish() {
        const int fd = fd_;
        fd_ = -1;
        return fd < 0 || close(fd) == 0;
    }

private:
    int fd_;
};

// What is locked is the directory: the file itself is another one after each change.
bool lock(int directory) {
    int result;
    do {
        result = flock(directory, LOCK_EX);
    } while (result != 0 && errno == EINTR);
    return result == 0;
}

bool make_list_directory() {
    for (const char *path : {"/var", "/var/safe-verify", list_directory}) {
        if (mkdir(path, 0755) != 0 && errno != EEXIST) {
            return false;
        }
    }
    return true;
}

std::string trimmed(const std::string &text) {
    const char blanks[] = " \t\r\n";
    const size_t start = text.find_first_not_of(blanks);
    return start == std::string::npos
               ? ""
               : text.substr(start, text.find_last_not_of(blanks) - start + 1);
}

// Fields may stand between blanks, and more than two may follow each other.
bool is_entry(const std::string &line, const Entry &entry) {
    const size_t end_of_path = line.find(',');
    if (end_of_path == std::string::npos) {
        return false;
    }
    const size_t client = end_of_path + 1;
    return trimmed(line.substr(0, end_of_path)) == entry.path &&
           trimmed(line.substr(client, line.find(',', client) - client)) == entry.client;
}

// The list without the entry; lines that are none stay as they are.
std::string without(const std::string &list, const Entry &entry) {
    std::string rest;
    for (size_t start = 0; start < list.size();) {
        const size_t end = std::min(list.find('\n', start), list.size() - 1) + 1;
        const std::string line = list.substr(start, end - start);
        rest += is_entry(line, entry) ? "" : line;
        start = end;
    }
    return rest;
}

std::string with(const std::string &list, const Entry &entry) {
    if (without(list, entry) != list) {
        return list;
    }
    return list + (list.empty() || list.back() == '\n' ? "" : "\n") + entry.line();
}

bool write_all(int fd, const std::string &text) {
    for (size_t done = 0; done < text.size();) {
        const ssize_t size = write(fd, text.data() + done, text.size() - done);
        if (size < 0 && errno != EINTR) {
            return false;
        }
        done += size < 0 ? 0 : static_cast<size_t>(size);
    }
    return true;
}

bool write_new_list(const std::string &list) {
    unlink(new_list_file);  // of a service that was killed
    Descriptor file(open(new_list_file, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644));
    return file.get() >= 0 && fchmod(file.get(), 0644) == 0 && write_all(file.get(), list) &&
           fsync(file.get()) == 0 && file.finish();
}

bool replace_list(int directory, const std::string &list) {
    if (!write_new_list(list) || rename(new_list_file, list_file) != 0) {
        unlink(new_list_file);
        return false;
    }
    return fsync(directory) == 0;
}

using Change = std::string (*)(const std::string &list, const Entry &entry);

Change change_of(int32_t status) {
    switch (status) {
        case REFERENCE_PLATFORM_WHITELIST_ADD:
        case REFERENCE_PLATFORM_WHITELIST_ADD_CHANGED:
            return with;
        case REFERENCE_PLATFORM_WHITELIST_DELETE:
            return without;
        default:
            return nullptr;
    }
}

bool change_list(Change change, const Entry &entry) {
    if (change == with && !make_list_directory()) {
        return false;
    }
    const Descriptor directory(open(list_directory, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (directory.get() < 0) {
        return change == without && errno == ENOENT;
    }
    if (!lock(directory.get())) {
        return false;
    }
    std::string list;
    reference::RegularFile file(list_file);
    if (!file.is_missing() && !file.read_all(list, largest_list)) {
        return false;
    }
    const std::string changed = change(list, entry);
    return changed == list || replace_list(directory.get(), changed);
}

}  // namespace

int32_t safe_verify_whitelist_update(const char *file_path, const char *client_name,
                                     int32_t change_status) {
    const Change change = change_of(change_status);
    if (file_path == nullptr || client_name == nullptr || change == nullptr) {
        return -1;
    }
    const Entry entry = {file_path, client_name};
    return entry.fits() && change_list(change, entry) ? 0 : -1;
}

int32_t reference::apply_whitelist_record(void *, vx_mom_record *record) {
    if (record->command != VX_MOM_VALUE) {
        return 0;
    }
    const auto *info = static_cast<const PUtils__SvWhitelistInfo *>(record->result);
    const int32_t result =
        safe_verify_whitelist_update(info->file_path, info->client_name, info->type);
    if (result != 0) {
        printk_syslog_ext(6, "SAFE_VERIFY", "WHITELIST", 1, "record refused: %s\n",
                          info->file_path == nullptr ? "no path" : info->file_path);
    }
    return result;
}
