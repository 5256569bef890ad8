// After patches were installed: which of their files the start-up check has to accept from now on.
#include <errno.h>
#include <string.h>

#include "common/guard.hh"
#include "common/log.hh"
#include "common/open_stream.hh"
#include "verify/dynamic_whitelist.hh"
#include "verify/file_list.hh"
#include "verify/list_line.hh"
#include "verify/verify_paths.hh"
#include "verify/whitelist_change.hh"

namespace {

// The service's numbers, and not those of the message's enumeration.
constexpr int32_t status_of_added = 2;
constexpr int32_t status_of_deleted = 3;

struct Run {
    uint32_t store;
    int32_t channel;
    DynamicWhitelist whitelist;
};

bool is_trusted_file(const char *path) {
    return cmpnt_is_safe_verify_dir(path) != 0 && is_dir(path) == 0;
}

int32_t send(Run &run, whitelist_change_request &request, const char *path, const char *pass) {
    snprintf(request.file_path, sizeof(request.file_path), "%s", path);
    const int32_t result = cmpnt_dynamic_whitelist_operate(run.store, &request);
    if (result != 0) {
        CMPNT_LOG_AS(log_error, pass, "cmpnt_dynamic_whitelist_operate fail.\n");
    }
    return result;
}

// Sends a request for each path of the list that is `wanted`.
template <typename Wanted>
int32_t send_files(Run &run, const char *list_path, int32_t change_status, const char *pass,
                   Wanted wanted) {
    const Stream list(open_to_read(list_path));
    if (!list) {
        CMPNT_LOG_AS(log_error, pass, "open(%s) failed, reason: %s\n", list_path, strerror(errno));
        return -1;
    }
    whitelist_change_request request = {};
    request.channel = run.channel;
    request.change_status = change_status;
    ListLine line;
    while (read_list_line(list.get(), line)) {
        if (wanted(line.text) && send(run, request, line.text, pass) != 0) {
            return -1;
        }
    }
    return 0;
}

}  // namespace

// Files that the package had and has no longer.
static int32_t trusted_start_whitelist_add(Run &run, const char *pkg_name) {
    const FileListPath former(former_file_lists, pkg_name);
    CMPNT_LOG(log_trace, "white_list_add(%s)\n", former.text);
    if (file_is_exist(former.text) == 0) {
        return 0;
    }
    const char *const pass = __func__;
    CurrentFileList current(pkg_name);
    return send_files(run, former.text, status_of_added, pass, [&](const char *path) {
        if (path[0] == '\0') {
            CMPNT_LOG_AS(log_trace, pass, "buf len is 0, continue.\n");
            return false;
        }
        return is_trusted_file(path) && !current.has(path) &&
               !run.whitelist.has(path, whitelist_any_client);
    });
}

// Files that the package has and that were entered by us.
static int32_t trusted_start_whitelist_delete(Run &run, const char *pkg_name) {
    const FileListPath current(current_file_lists, pkg_name);
    CMPNT_LOG(log_trace, "delete_white_list(%s)\n", current.text);
    return send_files(run, current.text, status_of_deleted, __func__, [&](const char *path) {
        return is_trusted_file(path) && run.whitelist.has(path, whitelist_own_entry);
    });
}

static int32_t send_saved_patches(Run &run, FILE *saved_list, const char *caller) {
    ListLine line;
    while (read_list_line(saved_list, line)) {
        if (line.text[0] == '\0') {
            CMPNT_LOG_AS(log_trace, caller, "buf len is 0, continue.\n");
            continue;
        }
        if (run.store == 0 && run.channel == 0) {
            CMPNT_LOG_AS(log_error, caller, "param is null.\n");
            return -1;
        }
        if (trusted_start_whitelist_add(run, line.text) != 0 ||
            trusted_start_whitelist_delete(run, line.text) != 0) {
            return -1;
        }
    }
    return 0;
}

int32_t cmpnt_write_trusted_start_whitelist(uintptr_t store, uintptr_t channel, uintptr_t third,
                                            uintptr_t fourth) {
    if (cmpnt_safe_verify_enable(store, channel, third, fourth) == 0) {
        return 0;
    }
    if (file_is_exist(saved_patch_list_path) == 0) {
        CMPNT_LOG(log_trace, "file (%s) is not exist.\n", saved_patch_list_path);
        return 0;
    }
    Stream saved_list(open_to_read(saved_patch_list_path));
    if (!saved_list) {
        CMPNT_LOG(log_error, "open(%s) failed, reason: %s\n", saved_patch_list_path,
                  strerror(errno));
        return -1;
    }
    Run run = {static_cast<uint32_t>(store), static_cast<int32_t>(channel), {}};
    const int32_t result = send_saved_patches(run, saved_list.get(), __func__);
    if (result != 0) {
        CMPNT_LOG(log_error, "trusted_start_whitelist_add fail\n");
    }
    saved_list.reset();
    cmpnt_remove(saved_patch_list_path);  // also after a failure: that is not tried again
    return result;
}
