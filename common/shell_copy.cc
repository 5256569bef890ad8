// Copying and moving files by shell command.
#include <stdio.h>

#include "common/log.hh"

namespace {

struct FileCommand {
    const char *function;  // that its messages bear
    const char *command;
    const LogChannel &trace;
    const LogChannel &error;
};

int32_t run_on_files(const FileCommand &run, const char *source, const char *destination) {
    if (source == nullptr || destination == nullptr) {
        CMPNT_LOG_AS(run.error, run.function, "param is null.\n");
        return -1;
    }
    if (file_is_exist(source) == 0) {
        CMPNT_LOG_AS(run.trace, run.function, "file(%s) is not exist.\n", source);
        return -1;
    }
    // No quotes around the paths: the backslashes before parentheses would stay inside them.
    char arguments[CMPNT_PATH_SIZE];
    snprintf(arguments, sizeof(arguments), "%s %s", source, destination);
    if (cmpnt_popen_cmd_run(run.command, arguments) != 0) {
        CMPNT_LOG_AS(run.error, run.function, "cmpnt_popen_cmd_run fail, buf(%s).\n", arguments);
        return -1;
    }
    return 0;
}

}  // namespace

int32_t cmpnt_copy_file_by_popen(const char *source, const char *destination) {
    return run_on_files({__func__, "cp -rf", log_trace, log_error}, source, destination);
}

int32_t cmpnt_rename_file_by_popen(const char *source, const char *destination) {
    return run_on_files({__func__, "mv", log_begin_trace, log_begin_error}, source, destination);
}
