// Removing the directories of SMUs that are installed only, or not current.
#include "db/clear.hh"

#include <string.h>

#include "common/log.hh"
#include "db/copy_text.hh"
#include "db/last_component.hh"
#include "db/row.hh"

namespace {

constexpr char download_mark[] = "download";  // packages still on their way are never cleared

bool may_be_cleared(const Row &row) {
    return row.number(column::pkg_state) == CMPNT_STATE_INSTALLED ||
           row.number(column::cur_flag) == 0;
}

}  // namespace

// Name and path of the row's SMU, in a request that is all zero; false for a row to be left alone.
static bool cmpnt_get_smu_name_and_path(cmpnt_db_request *req, const Row &row) {
    if (!may_be_cleared(row)) {
        return false;
    }
    cmpnt_pkg_record &record = req->record;
    copy_text(record.patch_name, row.text(column::patch_name));
    const bool path_fits = copy_text(record.cur_pkg_path, row.text(column::cur_pkg_path)) == 0;
    CMPNT_LOG(log_trace, "read smu_name from db: smu_name(%s), path(%s)\n", record.patch_name,
              record.cur_pkg_path);
    return path_fits;  // a path that was cut would name another directory, and that one would go
}

int select_clear_callback(void *argument, int columns, char **values, char **names) {
    const Row row = {columns, values, names};
    cmpnt_db_request request = {};
    if (row.is_null()) {
        return -1;
    }
    if (!cmpnt_get_smu_name_and_path(&request, row) ||
        cmpnt_is_exist_current_upgrade_list(request.record.patch_name) == 1) {
        return 0;
    }
    const uintptr_t types = reinterpret_cast<uintptr_t>(argument);
    CMPNT_LOG(log_trace, "prepare clear: smu_name(%s), path(%s), com_type(%d), dev_type(%d)\n",
              request.record.patch_name, request.record.cur_pkg_path,
              static_cast<int>(types & 0xFF), static_cast<int>(types >> 8 & 0xFF));
    char directory[CMPNT_PATH_SIZE];
    directory_of(request.record.cur_pkg_path, directory);
    if (strstr(last_component(directory), download_mark) == nullptr && !is_root(directory)) {
        CMPNT_LOG(log_trace, "prepare delete file(%s)\n", directory);
        cmpnt_remove(directory);
    }
    return 0;
}
