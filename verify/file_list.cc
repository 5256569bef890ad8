// The package manager's lists of the files that a package installed.
#include "verify/file_list.hh"

#include <errno.h>
#include <string.h>

#include "common/guard.hh"
#include "common/log.hh"
#include "common/open_stream.hh"
#include "verify/list_line.hh"
#include "verify/verify_paths.hh"

FileListPath::FileListPath(const char *directory, const char *pkg_name) {
    snprintf(text, sizeof(text), "%s/%s.list", directory, pkg_name);
}

int32_t file_exist_in_patch_list(const char *path, const char *pkg_name) {
    const FileListPath list_path(current_file_lists, pkg_name);
    const Stream list(open_to_read(list_path.text));
    if (!list) {
        CMPNT_LOG(log_error, "open(%s) failed, reason: %s\n", list_path.text, strerror(errno));
        return 0;
    }
    ListLine line;
    while (read_list_line(list.get(), line)) {
        if (strcmp(line.text, path) == 0) {
            return 1;
        }
    }
    return 0;
}

CurrentFileList::CurrentFileList(const char *pkg_name)
    : pkg_name_(pkg_name),
      path_(current_file_lists, pkg_name),
      index_(path_.text, add_whole_line) {}

bool CurrentFileList::has(const char *path) {
    return index_.is_current() ? index_.texts.contains(path)
                               : file_exist_in_patch_list(path, pkg_name_) != 0;
}
