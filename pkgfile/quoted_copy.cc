// A copy through the shell that lets paths with blanks through and takes directories.
#include "common/log.hh"

namespace {

constexpr char copy_command[] = "cp -rf";
constexpr int32_t arguments_size = 2 * CMPNT_PATH_SIZE;

}  // namespace

int32_t cmpnt_cp_file(const char *source, const char *destination) {
    if (source == nullptr || destination == nullptr) {
        CMPNT_LOG(log_error, "path is null.\n");
        return -1;
    }
    if (file_is_exist(source) == 0) {
        CMPNT_LOG(log_error, "file(%s) is no exist.\n", source);
        return -1;
    }
    char arguments[arguments_size] = {};
    const int32_t result =
        cmpnt_snprintf(arguments, arguments_size, "\"%s\" \"%s\"", source, destination);
    if (result != 0) {
        CMPNT_LOG(log_error, "cmpnt_snprintf fail\n");
        return result;
    }
    if (cmpnt_popen_cmd_run_not_deal_brk(copy_command, arguments) == -1) {
        CMPNT_LOG(log_error, "cmpnt_popen_cmd_run_not_deal_brk fail, cmd(%s).\n", copy_command);
        return -1;
    }
    return 0;
}
