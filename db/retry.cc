// The runner of updates: the only statements that are tried again.
#include <string.h>
#include <unistd.h>

#include "common/log.hh"
#include "db/write.hh"

namespace {

constexpr int attempt_limit = 6;

bool is_locked(const SqliteError &error) {
    return error && strstr(error.get(), "database is locked") != nullptr;
}

// All of it, also where the host's timers interrupt it.
void pause_for_a_second() {
    for (unsigned rest = 1; rest > 0;) {
        rest = sleep(rest);
    }
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
