// The signed list of installed files that are never checked.
#include "verify/global_whitelist.hh"

#include <errno.h>
#include <string.h>

#include "common/guard.hh"
#include "common/log.hh"
#include "common/open_stream.hh"
#include "verify/list_line.hh"
#include "verify/verify_paths.hh"

namespace {

// Without its signature file the list counts for nothing.
bool counts() { return file_is_exist(global_whitelist_signature_path) != 0; }

}  // namespace

// Only the length of the path is compared: a line stands for each of its beginnings.
int32_t file_exist_in_global_whitelist(const char *path) {
    if (path == nullptr) {
        CMPNT_LOG(log_error, "param is null.\n");
        return 0;
    }
    if (!counts()) {
        return 0;
    }
    const Stream list(open_to_read(global_whitelist_path));
    if (!list) {
        CMPNT_LOG(log_error, "open(%s) failed, reason: %s\n", global_whitelist_path,
                  strerror(errno));
        return 0;
    }
    const size_t length = strlen(path);
    ListLine line;
    while (read_list_line(list.get(), line)) {
        if (strncmp(line.text, path, length) == 0) {
            return 1;
        }
    }
    return 0;
}

GlobalWhitelist::GlobalWhitelist() : index_(global_whitelist_path, add_whole_line) {}

bool GlobalWhitelist::has(const char *path) {
    if (path == nullptr || !index_.is_current()) {
        return file_exist_in_global_whitelist(path) != 0;
    }
    return counts() && index_.texts.any_has_prefix(path);
}
