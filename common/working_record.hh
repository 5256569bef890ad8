// What the library itself remembers between calls.
#ifndef CMPNT_COMMON_WORKING_RECORD_HH
#define CMPNT_COMMON_WORKING_RECORD_HH

#include "libcmpnt_db.h"

struct WorkingRecord {
    int32_t single_patch_index;     // how many single patches the last fetch by index went through
    uint32_t global_hashes_loaded;  // 1: the global hash list was verified and loaded
    char verified_patch_directory[CMPNT_PATH_SIZE];  // whose hash list was verified last
};

extern WorkingRecord g_variable;

#endif
