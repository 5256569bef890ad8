// Which links are harmless cannot be told: the next archive may bring the directory that one leads to,
// or copy one to where it leads elsewhere. So none stays.
#include "verify/unpacked_links.hh"

#include <limits.h>
#include <stdio.h>
#include <sys/stat.h>

#include "common/guard.hh"
#include "verify/directory_entries.hh"

namespace {

// A walk with one path for all its levels, as long as any that the system takes: what is unpacked may
// lie deeper than the library's own paths reach.
class Walk {
public:
    bool run(const char *top) { return descend(append(0, top)); }

private:
    // The length with the name behind it; 0 when that is too long.
    size_t append(size_t length, const char *name) {
        const int added =
            snprintf(path_ + length, sizeof(path_) - length, "%s%s", length == 0 ? "" : "/", name);
        const bool fits = added > 0 && static_cast<size_t>(added) < sizeof(path_) - length;
        return fits ? length + static_cast<size_t>(added) : 0;
    }

    bool descend(size_t length) {
        if (length == 0) {
            return false;
        }
        Directory directory(opendir(path_));
        if (!directory) {
            return errno == ENOTDIR;
        }
        while (const struct dirent *entry = next_entry(directory.get())) {
            if (!look_at(append(length, entry->d_name))) {
                return false;
            }
            path_[length] = '\0';
        }
        return errno == 0;
    }

    bool look_at(size_t length) {
        struct stat status;
        if (length == 0 || lstat(path_, &status) != 0) {
            return false;
        }
        if (S_ISDIR(status.st_mode)) {
            return descend(length);
        }
        return !S_ISLNK(status.st_mode) || remove(path_) == 0;
    }

    char path_[PATH_MAX] = "";
};

}  // namespace

bool remove_links(const char *directory) { return Walk().run(directory); }
