// Running a command through the shell. There is no lock and nothing static: keeping a line of output
// may run a command from inside the run.
#include "common/command.hh"

#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "common/guard.hh"
#include "common/log.hh"

namespace {

// The next line of output, or piece of a line. The buffer is zeroed first so that what an interrupted
// read has put there is a text, behind which the reading goes on.
bool read_output(FILE *output, char (&line)[CMPNT_LINE_SIZE]) {
    memset(line, 0, sizeof(line));
    size_t length = 0;
    while (fgets(line + length, static_cast<int>(sizeof(line) - length), output) == nullptr) {
        length = strlen(line);
        if (ferror(output) == 0 || errno != EINTR) {
            return length > 0;
        }
        clearerr(output);
    }
    return true;
}

// What both runners do once the arguments are as the shell is to see them; the messages bear the
// runner's name and show the arguments as they were given.
int32_t run_redirected(const char *runner, const char *command, const char *given,
                       const char *arguments) {
    const size_t size = strlen(command) + strlen(arguments) + 2;
    HeapText line(new_text(size));
    if (!line) {
        CMPNT_LOG_AS(log_error, runner, "cmpnt_malloc fail.\n");
        return -1;
    }
    int32_t saved_stdout = -1;
    int32_t saved_stderr = -1;
    int32_t result = -1;
    if (cmpnt_install_log_redirect(&saved_stdout, &saved_stderr) != 0) {
        CMPNT_LOG_AS(log_error, runner, "cmpnt_install_log_redirect fail.\n");
    } else if (cmpnt_snprintf(line.get(), static_cast<int32_t>(size), "%s %s", command,
                              arguments) != 0) {
        CMPNT_LOG_AS(log_error, runner, "cmpnt_snprintf fail\n");
    } else {
        result = cmpnt_popen_cmd(line.get());
        if (result != 0) {
            CMPNT_LOG_AS(log_error, runner, "cmpnt_popen_cmd fail, cmd(%s), str(%s), ret(%d).\n",
                         command, given, result);
        }
    }
    // Also after a failed redirection: it may have moved one of the two streams.
    if (cmpnt_install_log_restore(saved_stdout, saved_stderr) != 0) {
        CMPNT_LOG_AS(log_error, runner, "cmpnt_install_log_restore fail.\n");
    }
    return result;
}

}  // namespace

int32_t cmpnt_popen_cmd(const char *line) {
    if (line == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return -1;
    }
    FILE *output = popen(line, "r");
    if (output == nullptr) {
        CMPNT_LOG(log_error, "popen error: %s/n", strerror(errno));
        return -1;
    }
    const char *kept_in = output_file_of(line);
    char text[CMPNT_LINE_SIZE];
    while (read_output(output, text)) {
        if (kept_in != nullptr) {
            cmpnt_write_stdout_file(text, kept_in);
        }
    }
    const int status = pclose(output);
    if (status == -1) {
        CMPNT_LOG(log_error, "popen close file pointer error, error(%s)\n", strerror(errno));
        return -1;
    }
    if (status != 0) {
        CMPNT_LOG(log_error, "popen result is: %d, error: %s\n", status, strerror(errno));
        return -1;
    }
    return 0;
}

int32_t cmpnt_popen_cmd_run(const char *command, const char *arguments) {
    if (command == nullptr || arguments == nullptr) {
        CMPNT_LOG(log_error, "param is null.\n");
        return -1;
    }
    HeapText escaped(cmpnt_replace_brackets_str(arguments));
    if (!escaped) {
        CMPNT_LOG(log_error, "replace fail, cmd(%s), str(%s)\n", command, arguments);
        return -1;
    }
    return run_redirected(__func__, command, arguments, escaped.get());
}

int32_t cmpnt_popen_cmd_run_not_deal_brk(const char *command, const char *arguments) {
    if (command == nullptr || arguments == nullptr) {
        CMPNT_LOG(log_error, "param is null.\n");
        return -1;
    }
    return run_redirected(__func__, command, arguments, arguments);
}
