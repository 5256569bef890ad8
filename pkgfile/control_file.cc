// Control, status and file-list files.
#include "common/log.hh"
#include "pkgfile/control_line.hh"
#include "pkgfile/line_file.hh"

int32_t parse_pkg_info_from_file(cmpnt_control_info *record, const char *path,
                                 cmpnt_file_param *param) {
    if (record == nullptr || path == nullptr) {
        CMPNT_LOG(log_error, "input param is error.\n");
        return -1;
    }
    return parse_line_file(__func__, {path, parse_control_line, record, sizeof(*record)}, param);
}
