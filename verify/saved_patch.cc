// The list of the patches that were installed since the whitelist was last brought up to date.
#include <errno.h>
#include <fcntl.h>
#include <string.h>

#include "common/guard.hh"
#include "common/log.hh"
#include "verify/list_line.hh"
#include "verify/verify_paths.hh"

namespace {

constexpr char saver[] = "cmpnt_save_safe_verify_patch";  // whose steps these are
constexpr mode_t file_mode = 0666;                        // the umask narrows it

// As fopen with "a+", but a pipe that nobody fills keeps nothing waiting.
FILE *open_saved_list() {
    Descriptor file(open(saved_patch_list_path,
                         O_RDWR | O_CREAT | O_APPEND | O_NONBLOCK | O_CLOEXEC, file_mode));
    FILE *list = file ? fdopen(file.get(), "a+") : nullptr;
    if (list != nullptr) {
        file.release();
    }
    return list;
}

bool is_saved(FILE *list, const char *pkg_name) {
    ListLine line;
    while (read_list_line(list, line)) {
        if (!line.was_empty && strcmp(line.text, pkg_name) == 0) {
            return true;
        }
        if (line.text[0] == '\0') {
            CMPNT_LOG_AS(log_trace, saver, "buf len is 0, continue.\n");
        }
    }
    return false;
}

// Most write errors come to light in the flush only, and stay there.
int32_t append(FILE *list, const char *pkg_name) {
    static_cast<void>(fseek(list, 0, SEEK_END));  // between reading and writing
    if (fputs(pkg_name, list) < 0 || fputs("\n", list) < 0) {
        CMPNT_LOG_AS(log_error, saver, "fputs fail, errno(%d).\n", errno);
        return -1;
    }
    fflush(list);
    return 0;
}

}  // namespace

int32_t cmpnt_save_safe_verify_patch(const char *pkg_name, uintptr_t second, uintptr_t third,
                                     uintptr_t fourth) {
    if (pkg_name == nullptr) {
        CMPNT_LOG(log_error, "param is null.\n");
        return -1;
    }
    if (cmpnt_safe_verify_enable(reinterpret_cast<uintptr_t>(pkg_name), second, third, fourth) ==
        0) {
        return 0;
    }
    if (cmpnt_mkdir(saved_patch_directory) != 0) {
        CMPNT_LOG(log_error, "mkdir fail, dir_path(%s).\n", saved_patch_directory);
        return -1;
    }
    const Stream list(open_saved_list());
    if (!list) {
        CMPNT_LOG(log_error, "open(%s) failed, reason: %s\n", saved_patch_list_path,
                  strerror(errno));
        return -1;
    }
    return is_saved(list.get(), pkg_name) ? 0 : append(list.get(), pkg_name);
}
