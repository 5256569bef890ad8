// The files of an unpacked package against the digests listed for where they would be installed.
#include "verify/tree_digest.hh"

#include <string.h>

#include "common/guard.hh"
#include "common/log.hh"
#include "verify/directory_entries.hh"
#include "verify/verify_paths.hh"

namespace {

constexpr char verifier[] = "cmpnt_global_hash_file_verify";  // whose steps these are
constexpr char start_up_links[] = "/etc/rc.d";
constexpr size_t start_up_links_length = sizeof(start_up_links) - 1;

// By count, whatever the path begins with.
const char *installed_path_of(const char *path) {
    const size_t length = strlen(path);
    return path + (length < scratch_directory_length ? length : scratch_directory_length);
}

int32_t check_listed(const char *path, const char *installed_path, const hash_verify_list_t &digest,
                     DynamicWhitelist &whitelist) {
    CMPNT_LOG_AS(log_trace, verifier, "hash_check hash_name(%s) hash_value(%s)\n", digest.name,
                 digest.hash_value);
    const int32_t result = do_verify_signature("", path, digest.hash_value,
                                               static_cast<uint32_t>(strlen(digest.hash_value)));
    if (result == 0) {
        return 0;
    }
    CMPNT_LOG_AS(log_error, verifier, "(%s) do_verify_signature fail ret(%d).\n", installed_path,
                 result);
    if (whitelist.has(installed_path, whitelist_any_client)) {
        return 0;
    }
    CMPNT_LOG_AS(log_error, verifier, "file(%s) not in dynamic white list.\n", installed_path);
    return -1;
}

// Only start-up links are checked: what another link leads to has a path of its own.
int32_t check_file(const char *path, bool is_link, TreeLists &lists) {
    const char *installed_path = installed_path_of(path);
    if (is_link && strncmp(installed_path, start_up_links, start_up_links_length) != 0) {
        return 0;
    }
    if (lists.global_whitelist.has(installed_path)) {
        return 0;
    }
    const hash_verify_list_t *digest = lists.digests.find(installed_path);
    if (digest == nullptr) {
        return 0;
    }
    return check_listed(path, installed_path, *digest, lists.dynamic_whitelist);
}

int32_t check_directory(const char *path, TreeLists &lists) {
    if (cmpnt_global_hash_file_verify(path, lists) != 0) {
        CMPNT_LOG_AS(log_error, verifier, "cmpnt_global_hash_file_verify fail\n");
        return -1;
    }
    return 0;
}

// A path that does not fit counts as unreadable: cut, it could be another file's, or that of the
// directory itself, for ever.
int32_t check_entry(const char *directory, const struct dirent &entry, TreeLists &lists) {
    const bool is_directory = entry.d_type == DT_DIR;
    const bool is_link = entry.d_type == DT_LNK;
    if (!is_directory && !is_link && entry.d_type != DT_REG) {
        return 0;
    }
    char path[CMPNT_PATH_SIZE];
    const int length = snprintf(path, sizeof(path), "%s/%s", directory, entry.d_name);
    if (length < 0 || static_cast<size_t>(length) >= sizeof(path)) {
        CMPNT_LOG_AS(log_error, verifier, "opendir path(%s) fail.\n", path);
        return -1;
    }
    return is_directory ? check_directory(path, lists) : check_file(path, is_link, lists);
}

}  // namespace

int32_t cmpnt_global_hash_file_verify(const char *directory, TreeLists &lists) {
    Directory opened(opendir(directory));
    if (!opened) {
        CMPNT_LOG(log_error, "opendir path(%s) fail.\n", directory);
        return -1;
    }
    while (const struct dirent *entry = next_entry(opened.get())) {
        if (check_entry(directory, *entry, lists) != 0) {
            return -1;
        }
    }
    return errno == 0 ? 0 : -1;
}

int32_t cmpnt_global_hash_file_verify(const char *directory) {
    if (directory == nullptr) {
        return -1;
    }
    TreeLists lists;
    return cmpnt_global_hash_file_verify(directory, lists);
}
