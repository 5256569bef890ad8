// Table names by number, and integers out of rows.
#include "db/tables.hh"

#include "libcmpnt_db.h"
#include "pkgfile/number.hh"

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

int32_t column_number(const char *value) { return value == nullptr ? 0 : decimal_number(value); }
