// Streams over files that others name: should one be a pipe that nobody fills, nothing waits for it.
#ifndef CMPNT_COMMON_OPEN_STREAM_HH
#define CMPNT_COMMON_OPEN_STREAM_HH

#include <stdio.h>

FILE *open_to_read(const char *path);  // as fopen with "r"

#endif
