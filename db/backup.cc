// The backup of the main database file on persistent storage.
#include <stdio.h>

#include "common/log.hh"
#include "db/connection.hh"

// A child copies, not this process: closing a descriptor of the file here would drop the locks that
// SQLite holds on it in another thread.
int32_t cmpnt_backup_sqlite_db_to_data(void) {
    constexpr char command[] = "cp -rf";
    char unused[CMPNT_PATH_SIZE];
    const char *path = database_path(CMPNT_DB_MAIN, unused);
    if (file_is_exist(path) != 1) {
        CMPNT_LOG(log_error, "sqlite db is no exist, path(%s).\n", path);
        return -1;
    }
    char arguments[CMPNT_PATH_SIZE];
    snprintf(arguments, sizeof(arguments), "%s %s", path, database_path(CMPNT_DB_BACKUP, unused));
    if (cmpnt_popen_cmd_run(command, arguments) != 0) {
        CMPNT_LOG(log_error, "cmpnt_popen_cmd_run fail, cmd(%s), buf(%s).\n", command, arguments);
        return -1;
    }
    return 0;
}
