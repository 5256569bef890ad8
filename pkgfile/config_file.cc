// Product-type and history files.
#include "common/log.hh"
#include "pkgfile/config_line.hh"
#include "pkgfile/line_file.hh"

namespace {

int32_t parse_config_line(void *record, TextLine line, cmpnt_file_param *param) {
    return cmpnt_parse_config_file(record, line.text, param);
}

}  // namespace

// The record is not zeroed: its size depends on the mode.
int32_t cmpnt_parse_config_from_file(cmpnt_file_param *param, const char *path, void *record) {
    if (param == nullptr || path == nullptr || record == nullptr) {
        CMPNT_LOG(log_error, "input param is error.\n");
        return -1;
    }
    return parse_line_file(__func__, {path, parse_config_line, record, 0}, param);
}
