// Whether a package has a row.
#include "common/log.hh"
#include "db/write.hh"

int32_t cmpnt_pkg_name_exist_in_base_table(const char *package_name) {
    if (package_name == nullptr) {
        CMPNT_LOG(log_error, "input param is error.\n");
        return -1;
    }
    cmpnt_db_request request = {};
    request.table = CMPNT_PACKAGE_INFO_TABLE;
    request.cmd = write_test_package_name;
    set_base_db_value(&request.base, package_name, nullptr, nullptr, 0, 0, 0);
    if (cmpnt_operate_pkg_database(&request, write_test_package_name) != 0) {
        CMPNT_LOG(log_error, "operate database fail, cmd(%d).\n", write_test_package_name);
        return -1;
    }
    return request.exist == 1 ? 1 : 0;
}

// A failure names the other function's code, as it always has.
int32_t cmpnt_pkg_name_exist_in_upgrade_table(const char *pkg_name) {
    if (pkg_name == nullptr) {
        CMPNT_LOG(log_error, "input param is error.\n");
        return -1;
    }
    cmpnt_db_request request = {};
    request.table = CMPNT_PKG_UPGRADE_TABLE;
    request.cmd = write_test_pkg_name;
    set_upgrade_db_value(&request.record, nullptr, pkg_name, nullptr, nullptr, nullptr, 0, 0, 0, 0,
                         nullptr);
    if (cmpnt_operate_pkg_database(&request, write_test_pkg_name) != 0) {
        CMPNT_LOG(log_error, "operate database fail, cmd(%d).\n", write_test_package_name);
        return -1;
    }
    return request.exist == 1 ? 1 : 0;
}
