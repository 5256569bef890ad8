// Output of commands that is kept: of the two package manager commands whose output matters.
#include <string.h>
#include <sys/stat.h>

#include "common/command.hh"
#include "common/log.hh"

namespace {

constexpr char dependents_file[] = "/var/cache/opkg/.cmd_redirect";
constexpr char install_log[] = "/var/cache/opkg/debug/.cmpnt_upgrade_opkg.log";
constexpr char dependents_command[] = "opkg whatdepends";
constexpr char install_command[] = "opkg install";
constexpr off_t size_limit = 0x40000;

template <size_t size>
bool begins_with(const char *line, const char (&word)[size]) {
    return str_is_same(line, word, size - 1) != 0;
}

bool is_full(const char *path) {
    struct stat status;
    return stat(path, &status) == 0 && status.st_size >= size_limit;
}

}  // namespace

const char *output_file_of(const char *command_line) {
    if (begins_with(command_line, dependents_command)) {
        return dependents_file;
    }
    return begins_with(command_line, install_command) ? install_log : nullptr;
}

int32_t cmpnt_write_stdout_file(char *line, const char *path) {
    CMPNT_LOG(log_trace, "popen cmd run result(%s)\n", line);
    if (is_full(path)) {
        // The log goes whichever file is full: only it grows with every installation.
        cmpnt_system_cmd_run("rm -rf", install_log);
    }
    const size_t length = strlen(line);
    if (length > 0) {
        line[length - 1] = '\0';
    }
    if (cmpnt_write_to_file(line, path) != 0) {
        CMPNT_LOG(log_error, "cmpnt_write_to_file fail.\n");
        return -1;
    }
    return 0;
}
