// Unpacking a base package into the scratch directory.
#include "verify/unpack.hh"

#include <stdio.h>
#include <sys/stat.h>

#include "common/log.hh"
#include "verify/unpacked_links.hh"
#include "verify/verify_paths.hh"

namespace {

constexpr char unpacker[] = "cmpnt_unzip_safe_verify_file";  // whose steps these are
constexpr char unpack_command[] = "tar -xf";

bool is_there(const char *path) {
    if (file_is_exist(path) == 0) {
        CMPNT_LOG_AS(log_error, unpacker, "file(%s) is not exist.\n", path);
        return false;
    }
    return true;
}

// False when the path is too long: cut, it would be another's.
bool format_arguments(const char *archive, char (&arguments)[CMPNT_LINE_SIZE]) {
    const int length =
        snprintf(arguments, sizeof(arguments), "%s -C %s", archive, scratch_directory);
    return length >= 0 && static_cast<size_t>(length) < sizeof(arguments);
}

// A package may bring a pipe or a terminal for its inner archive, where tar would wait for ever.
bool may_wait(const char *archive) {
    struct stat status;
    return stat(archive, &status) == 0 && (S_ISFIFO(status.st_mode) || S_ISCHR(status.st_mode));
}

bool run_tar(const char *archive, const char *arguments) {
    return !may_wait(archive) && cmpnt_system_cmd_run(unpack_command, arguments) == 0;
}

}  // namespace

int32_t cmpnt_unzip_safe_verify_file(const char *path) {
    if (cmpnt_mkdir(scratch_directory) != 0) {
        CMPNT_LOG(log_error, "mkdir fail, dir_path(%s).\n", scratch_directory);
        return -1;
    }
    char arguments[CMPNT_LINE_SIZE];
    if (!is_there(path) || !format_arguments(path, arguments) || !remove_links(scratch_directory)) {
        return -1;
    }
    if (!run_tar(path, arguments)) {
        CMPNT_LOG(log_error, "cmpnt_popen_cmd_run fail, buf(%s).\n", arguments);
        return -1;
    }
    char inner_archive[CMPNT_PATH_SIZE];
    snprintf(inner_archive, sizeof(inner_archive), "%s/%s", scratch_directory, inner_archive_name);
    if (!remove_links(scratch_directory) || !is_there(inner_archive) ||
        !format_arguments(inner_archive, arguments)) {
        return -1;
    }
    if (!run_tar(inner_archive, arguments)) {
        CMPNT_LOG(log_error, "cmpnt_system_cmd_run fail, buf(%s).\n", arguments);
        return -1;
    }
    return 0;
}
