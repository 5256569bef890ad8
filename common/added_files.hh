// The walk behind the listing of added package files.
#ifndef CMPNT_COMMON_ADDED_FILES_HH
#define CMPNT_COMMON_ADDED_FILES_HH

#include <stdint.h>

// Shows what lies in the directory and below it. -1 as soon as something cannot be looked at.
int32_t cmpnt_traverse_all_add_file(const char *path, uint32_t mode);

#endif
