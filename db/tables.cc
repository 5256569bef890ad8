// Table names by number, and integers out of rows.
#include "db/tables.hh"

#include <stdlib.h>

#include "libcmpnt_db.h"

const char *table_name(int32_t table) {
    switch (table) {
        case CMPNT_PACKAGE_INFO_TABLE:
            return "package_info_table";
        case CMPNT_PKG_UPGRADE_TABLE:
            return "pkg_upgrade_table";
        case CMPNT_SERVER_TABLE:
            return "server_table";
        case CMPNT_AUTO_SYNC_TABLE:
            return "auto_sync_table";
        default:
            return nullptr;
    }
}

int32_t column_number(const char *value) {
    if (value == nullptr) {
        return 0;
    }
    const long number = strtol(value, nullptr, 10);
    if (number > INT32_MAX) {
        return INT32_MAX;
    }
    return number < INT32_MIN ? INT32_MIN : static_cast<int32_t>(number);
}
