// Steps 1 and 2: the databases, and the packages that this machine has installed.
#include <sqlite3.h>
#include <stdio.h>

#include <fstream>

#include "tools/demo/demo.hh"

namespace demo {
namespace {

constexpr char machine_status[] = "/host/dpkg-status";  // put there by the sandbox
constexpr char device_status[] = "/var/lib/opkg/status";

// The six values that parse mode 1 binds for each package.
constexpr char insert_package[] =
    "insert into package_info_table(package_name, base_version, current_version, package_state, "
    "package_is_new, upgrade_count) values(?, ?, ?, ?, ?, ?)";

int paragraphs_in(const char *path) {
    std::ifstream file(path);
    int count = 0;
    for (std::string line; std::getline(file, line);) {
        count += line.compare(0, 9, "Package: ") == 0;
    }
    return count;
}

int rows_in(sqlite3 *db) {
    sqlite3_stmt *statement = nullptr;
    int count = -1;
    if (sqlite3_prepare_v2(db, "select count(*) from package_info_table", -1, &statement,
                           nullptr) == SQLITE_OK &&
        sqlite3_step(statement) == SQLITE_ROW) {
        count = sqlite3_column_int(statement, 0);
    }
    sqlite3_finalize(statement);
    return count;
}

// A host's own work on an open database: one transaction for hundreds of packages.
bool load_status(sqlite3 *db) {
    sqlite3_stmt *statement = nullptr;
    if (sqlite3_prepare_v2(db, insert_package, -1, &statement, nullptr) != SQLITE_OK) {
        return false;
    }
    cmpnt_file_param param;
    set_file_param(&param, CMPNT_PARSE_STATUS_TO_DB, 0, 0, 0);
    param.statement = statement;
    cmpnt_control_info package = {};
    sqlite3_exec(db, "begin", nullptr, nullptr, nullptr);
    const int32_t result = parse_pkg_info_from_file(&package, device_status, &param);
    sqlite3_finalize(statement);
    sqlite3_exec(db, "commit", nullptr, nullptr, nullptr);
    return result == 0;
}

}  // namespace

bool create_databases() {
    if (cmpnt_mkdir("/var/lib/opkg") != 0 || cmpnt_mkdir("/data/cmpnt/opkg") != 0 ||
        cmpnt_mkdir("/tmp/opkg/server") != 0) {
        return fail("creating the database directories");
    }
    if (cmpnt_create_pkg_table(CMPNT_PACKAGE_INFO_TABLE, CMPNT_DB_MAIN) != 0 ||
        cmpnt_create_pkg_table(CMPNT_PKG_UPGRADE_TABLE, CMPNT_DB_MAIN) != 0 ||
        cmpnt_create_pkg_table(CMPNT_SERVER_TABLE, CMPNT_DB_SERVER) != 0 ||
        cmpnt_create_pkg_table(CMPNT_AUTO_SYNC_TABLE, CMPNT_DB_AUTO_SYNC) != 0) {
        return fail("creating the tables");
    }
    printf("created the main, server and auto-sync databases\n");
    return cmpnt_db_tabel_is_exist() == 1 || fail("finding the tables");
}

bool import_installed_packages() {
    if (cmpnt_copy_file_by_write(machine_status, device_status) == -1) {
        return fail("copying this machine's package status file");
    }
    const int32_t lock = cmpnt_open_db_flock();
    sqlite3 *db = nullptr;
    if (lock < 0 || cmpnt_open_sqlite(&db, CMPNT_DB_MAIN) != 0) {
        return fail("opening the main database");
    }
    const bool loaded = load_status(db);
    const int rows = rows_in(db);
    sqlite3_close(db);
    cmpnt_close(lock);
    const int packages = paragraphs_in(device_status);
    printf("loaded the %d packages installed on this machine into package_info_table\n", rows);
    return (loaded && rows == packages) || fail("loading every package of the status file");
}

}  // namespace demo
