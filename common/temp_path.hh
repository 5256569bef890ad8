// Paths in the temporary directory, for functions that say themselves what goes wrong.
#ifndef CMPNT_COMMON_TEMP_PATH_HH
#define CMPNT_COMMON_TEMP_PATH_HH

#include "libcmpnt_db.h"

// The temporary directory followed directly by the name, which brings its leading slash. When that is
// too long, dest is left with the directory alone.
enum class TempPath { made, no_directory, too_long };
TempPath join_temp_path(const char *name, char *dest, int32_t size);

// What the messages call the file.
enum class TempFile { marker, lock };

// The same with the messages of marker and lock files, under the name of the function given. False
// when there is no such path.
bool make_temp_path(const char *function, TempFile kind, const char *name,
                    char (&path)[CMPNT_PATH_SIZE]);

#endif
