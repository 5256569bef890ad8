// Paths of files in the temporary directory, for functions that say themselves what goes wrong.
#ifndef CMPNT_COMMON_TMP_PATH_HH
#define CMPNT_COMMON_TMP_PATH_HH

#include "libcmpnt_db.h"

// What the messages call the file.
enum class TmpFile { MARKER, LOCK };

// The temporary directory followed directly by the name, which brings its leading slash. False when
// there is no such path; the messages bear the name of the function given.
bool make_tmp_path(const char *function, TmpFile kind, const char *name,
                   char (&path)[CMPNT_PATH_SIZE]);

#endif
