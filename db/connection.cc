// The database files and how they are opened.
#include "db/connection.hh"

#include "common/log.hh"

namespace {

constexpr char main_path[] = "/var/lib/opkg/cmpnt_upgrade.db3";
constexpr char backup_path[] = "/data/cmpnt/opkg/cmpnt_upgrade_backup.db3";
constexpr char auto_sync_path[] = "/var/lib/opkg/cmpnt_auto_sync.db3";
constexpr char server_name[] = "/opkg/server/.cmpnt_server.db3";  // in the temporary directory

}  // namespace

const char *database_path(int32_t db_type, char (&buffer)[CMPNT_PATH_SIZE]) {
    switch (db_type) {
        case CMPNT_DB_SERVER:
            return cmpnt_strcat_tmp_and_name(server_name, buffer, sizeof(buffer)) == 0 ? buffer
                                                                                       : nullptr;
        case CMPNT_DB_BACKUP:
            return backup_path;
        case CMPNT_DB_AUTO_SYNC:
            return auto_sync_path;
        default:
            return main_path;
    }
}

int32_t open_sqlite(sqlite3 **db, const char *path) {
    if (db == nullptr || path == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return -1;
    }
    *db = nullptr;
    if (sqlite3_open(path, db) != SQLITE_OK) {
        CMPNT_LOG(log_error, "Can't open database: %s\n", sqlite3_errmsg(*db));
        sqlite3_close(*db);  // SQLite leaves a handle behind; null is fine
        *db = nullptr;
        return -1;
    }
    return 0;
}

int32_t open_server_sqlite(sqlite3 **db) {
    if (db == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return -1;
    }
    *db = nullptr;
    char buffer[CMPNT_PATH_SIZE];
    const char *path = database_path(CMPNT_DB_SERVER, buffer);
    if (path == nullptr) {
        CMPNT_LOG(log_error, "cmpnt_strcat_tmp_and_name fail\n");
        return -1;
    }
    if (open_sqlite(db, path) != 0) {
        CMPNT_LOG(log_error, "open_sqlite fail\n");
        return -1;
    }
    return 0;
}

int32_t cmpnt_open_sqlite(sqlite3 **db, int32_t db_type) {
    if (db == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return -1;
    }
    if (db_type == CMPNT_DB_SERVER) {
        if (open_server_sqlite(db) != 0) {
            CMPNT_LOG(log_error, "open_server_sqlite fail\n");
            return -1;
        }
        return 0;
    }
    char unused[CMPNT_PATH_SIZE];
    if (open_sqlite(db, database_path(db_type, unused)) != 0) {
        CMPNT_LOG(log_error, "open_sqlite fail\n");
        return -1;
    }
    return 0;
}

int32_t DatabaseExchange::begin(int32_t db_type, const char *function) {
    lock_.reset(cmpnt_open_db_flock());
    if (!lock_) {
        CMPNT_LOG_AS(log_error, function, "open db flock fail.\n");
        return -1;
    }
    sqlite3 *db = nullptr;
    const int32_t result = cmpnt_open_sqlite(&db, db_type);
    database_.reset(db);
    if (result != 0 || !database_) {
        CMPNT_LOG_AS(log_error, function, "cmpnt_open_sqlite fail ret(%d)\n", result);
        return -1;
    }
    return 0;
}
