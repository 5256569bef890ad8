// A host in C++: two records written, loaded into the list, and compared.
#include <cmpnt_db/platform.h>
#include <libcmpnt_db.h>

#include <cstdio>
#include <string>

namespace {

enum { INSERT_RECORD = 2 };

bool record(const std::string &patch, const std::string &version) {
    cmpnt_db_request request = {};
    request.table = CMPNT_PKG_UPGRADE_TABLE;
    request.db_type = CMPNT_DB_MAIN;
    request.cmd = INSERT_RECORD;
    set_upgrade_db_value(&request.record, patch.c_str(), "shell", nullptr, version.c_str(), nullptr,
                         CMPNT_STATE_ACTIVE, 0, 0, 0, nullptr);
    return cmpnt_operate_pkg_database(&request, INSERT_RECORD) == 0;
}

std::string newest_active_version() {
    cmpnt_upgrade_value newest = {};
    int32_t found = 0;
    cmpnt_client_list_init();
    traverse_pkg_info_table(CMPNT_PKG_UPGRADE_TABLE, CMPNT_ROWS_TO_UPGRADE_LIST, 0, CMPNT_DB_MAIN);
    cmpnt_get_max_version_by_state(&newest, "active", &found);
    cmpnt_recycle_upgrade_list(CMPNT_UPGRADE_LIST);
    return found == 1 ? newest.cur_version : "";
}

}  // namespace

int main() {
    const bool good = std::string(cmpnt_db_version()) == CMPNT_DB_VERSION &&
                      cmpnt_mkdir("/var/lib/opkg") == 0 && cmpnt_mkdir("/data/cmpnt/opkg") == 0 &&
                      cmpnt_create_pkg_table(CMPNT_PKG_UPGRADE_TABLE, CMPNT_DB_MAIN) == 0 &&
                      record("smu_1", "2.9") && record("smu_2", "2.10") &&
                      newest_active_version() == "2.10";
    std::puts(good ? "the newest active version is 2.10" : "failed");
    return good ? 0 : 1;
}
