// A shell command of which only the success counts.
#include "common/log.hh"

namespace {

const char *shown(const char *text) { return text == nullptr ? "(null)" : text; }

}  // namespace

int32_t cmpnt_system_cmd_run(const char *command, const char *arguments) {
    if (cmpnt_popen_cmd_run(command, arguments) == -1) {
        CMPNT_LOG(log_error, "cmpnt_popen_cmd_run fail, cmd(%s), str(%s).\n", shown(command),
                  shown(arguments));
        return -1;
    }
    return 0;
}
