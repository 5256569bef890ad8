// What control and status files say of a package.
#include <stdio.h>
#include <string.h>

#include "common/log.hh"

namespace {

constexpr char status_path[] = "/var/lib/opkg/status";

// The parse succeeds too when the package is not there; the record may then hold the last paragraph
// of the file, another package's.
bool is_about(const cmpnt_control_info &record, const char *pkg_name) {
    return str_is_empty(record.package) == 0 && strcmp(record.package, pkg_name) == 0;
}

}  // namespace

int32_t cmpnt_get_pkg_info_from_control(cmpnt_control_info *record, const char *path) {
    if (record == nullptr || path == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return -1;
    }
    cmpnt_file_param param;
    set_file_param(&param, READ_PKG_INFO_FROM_CONTROL, 0, 0, 0);
    if (parse_pkg_info_from_file(record, path, &param) == -1) {
        CMPNT_LOG(log_error, "parse_pkg_info_from_file fail, control_path(%s).\n", path);
        return -1;
    }
    return 0;
}

int32_t cmpnt_get_pkg_current_version(const char *pkg_name, char *version) {
    if (pkg_name == nullptr || version == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return -1;
    }
    if (file_is_exist(status_path) == 0) {
        CMPNT_LOG(log_error, "status(%s) is not exist\n", status_path);
        return -1;
    }
    cmpnt_file_param param;
    set_file_param(&param, CMPNT_PARSE_FIND_PACKAGE, reinterpret_cast<intptr_t>(pkg_name), 0, 0);
    cmpnt_control_info record = {};  // in this mode nothing is allocated for it
    if (parse_pkg_info_from_file(&record, status_path, &param) != 0 ||
        !is_about(record, pkg_name)) {
        CMPNT_LOG(log_error, "parse_pkg_info_from_file fail, pkg_name(%s).\n", pkg_name);
        return -1;
    }
    memset(version, 0, CMPNT_VERSION_SIZE);
    snprintf(version, CMPNT_VERSION_SIZE, "%s", record.version);
    CMPNT_LOG(log_trace, "get current version: pkg_name(%s), cur_version(%s).\n", pkg_name,
              version);
    return 0;
}
