// Where package files are unpacked to.
#ifndef CMPNT_LIST_DEST_PATH_HH
#define CMPNT_LIST_DEST_PATH_HH

#include <stdint.h>

// What a destination ends in; null for a type of file that is not unpacked.
const char *dest_suffix(uint32_t type);

#endif
