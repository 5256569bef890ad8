// The steps of a command run.
#ifndef CMPNT_COMMON_COMMAND_HH
#define CMPNT_COMMON_COMMAND_HH

#include <stddef.h>

#include "libcmpnt_db.h"

// A zeroed text buffer to free, or null: also for sizes that the helpers on texts cannot name.
inline char *new_text(size_t size) {
    return size > INT32_MAX ? nullptr
                            : static_cast<char *>(cmpnt_malloc(static_cast<uint32_t>(size)));
}

// A copy of the arguments with a backslash before each parenthesis, to free; null on failure.
char *cmpnt_replace_brackets_str(const char *arguments);

// Runs the line through a pipe, keeps its output where it matters and waits for its end: 0 for an exit
// with status 0, else -1.
int32_t cmpnt_popen_cmd(const char *line);

// The file that keeps the output of this command line, or null when its output is thrown away.
const char *output_file_of(const char *command_line);

// Appends a line of output, whose last character is cut off in place, to the file.
int32_t cmpnt_write_stdout_file(char *line, const char *path);

#endif
