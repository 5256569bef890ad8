// Unpacking a base package to look at what it would install.
#ifndef CMPNT_VERIFY_UNPACK_HH
#define CMPNT_VERIFY_UNPACK_HH

#include <stdint.h>

// Unpacks the package and then its inner archive into the scratch directory. 0 or -1.
int32_t cmpnt_unzip_safe_verify_file(const char *path);

#endif
