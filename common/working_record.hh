// What the library itself remembers between calls.
#ifndef CMPNT_COMMON_WORKING_RECORD_HH
#define CMPNT_COMMON_WORKING_RECORD_HH

#include <stdint.h>

struct WorkingRecord {
    int32_t single_patch_index;  // how many single patches the last fetch by index went through
};

extern WorkingRecord g_variable;

#endif
