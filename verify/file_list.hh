// The package manager's lists of the files that a package installed.
#ifndef CMPNT_VERIFY_FILE_LIST_HH
#define CMPNT_VERIFY_FILE_LIST_HH

#include "libcmpnt_db.h"
#include "verify/file_index.hh"

// "DIRECTORY/NAME.list"
struct FileListPath {
    FileListPath(const char *directory, const char *pkg_name);
    char text[CMPNT_PATH_SIZE];
};

// 1 when the path is a line of the package's current list.
int32_t file_exist_in_patch_list(const char *path, const char *pkg_name);

// For many questions: has() answers what file_exist_in_patch_list() would.
class CurrentFileList {
public:
    explicit CurrentFileList(const char *pkg_name);
    bool has(const char *path);

private:
    const char *pkg_name_;
    FileListPath path_;
    FileIndex index_;
};

#endif
