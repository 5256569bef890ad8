// The runner of updates: the only statements that are tried again.
#include <string.h>

#include "common/log.hh"
#include "common/pause.hh"
#include "db/write.hh"

namespace {

constexpr int attempt_limit = 6;

bool is_locked(const SqliteError &error) {
    return error && strstr(error.get(), "database is locked") != nullptr;
}

}  // namespace

int32_t cmpnt_sqlite3_exec(sqlite3 *db, const char *sql) {
    for (int attempt = 1;; attempt++) {
        SqliteError error;
        if (execute(db, sql, error) == SQLITE_OK) {
            return 0;
        }
        CMPNT_LOG(log_error, "sqlite error: %s, table(%s)\n", error.text(), sql);
        if (!is_locked(error) || attempt == attempt_limit) {
            break;
        }
        pause_for_a_second();
    }
    CMPNT_LOG(log_error, "cmpnt_sqlite3_exec fail\n");
    return -1;
}
