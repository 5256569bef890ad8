// The directory that a file is about to be created in.
#include "common/parent_directory.hh"

#include <stdio.h>

#include "libcmpnt_db.h"

void create_parent_directory(const char *path) {
    char directory[CMPNT_LINE_SIZE];
    snprintf(directory, sizeof(directory), "%s", path);
    get_path_exclude_file_name(directory);
    cmpnt_mkdir(directory);
}
