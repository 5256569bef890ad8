// Hash list files: a line for each file, its SM3 digest, two blanks and its name.
#ifndef CMPNT_VERIFY_HASH_FILE_HH
#define CMPNT_VERIFY_HASH_FILE_HH

#include <stdint.h>

// Loads the file into hash_verify_list. 0 or -1; a line that is no entry empties the whole list.
int32_t cmpnt_get_hash_info(const char *path);

#endif
