// The end of a paragraph of a control or status file.
#include <string.h>

#include "common/log.hh"
#include "pkgfile/control_line.hh"
#include "pkgfile/stream_reader.hh"

namespace {

// As the device prints a word: signed, whatever the width of long.
long printed(uint32_t number) { return static_cast<int32_t>(number); }

}  // namespace

int32_t cmpnt_file_blank_line_deal(cmpnt_control_info *record, const cmpnt_file_param *param) {
    const char *name = reinterpret_cast<const char *>(param->name);
    switch (param->mode) {
        case CMPNT_PARSE_STATUS_TO_DB:
            store_status_row(param->statement, *record);
            memset(record, 0, sizeof(*record));
            return 0;
        case CMPNT_PARSE_ONE_PARAGRAPH:
            CMPNT_LOG(log_trace, "name(%s), ver(%s), md5(%s), reboot(%d), size(%ld), time(%ld).\n",
                      record->package, record->version, record->md5_sum, record->is_reboot,
                      printed(record->installed_size), printed(record->installed_time));
            return handler_stop;
        case CMPNT_PARSE_FIND_PACKAGE:
            if (name != nullptr && strcmp(record->package, name) == 0) {
                return handler_stop;
            }
            memset(record, 0, sizeof(*record));
            return 0;
        case CMPNT_PARSE_BACKUP_FILES:
            CMPNT_LOG(log_trace, "look data path list end.\n");
            return 0;
        case READ_PKG_INFO_FROM_CONTROL:
            CMPNT_LOG(log_trace,
                      "smu_name(%s), ver(%s), md5(%s), reboot(%d), size(%ld), description(%s).\n",
                      record->package, record->version, record->md5_sum, record->is_reboot,
                      printed(record->installed_size), record->description);
            return handler_stop;
        default:
            return 0;
    }
}
