// Running one SQL statement.
#include "db/statement.hh"

#include "common/log.hh"

int execute(sqlite3 *db, const char *statement, SqliteError &error, sqlite3_callback callback,
            void *context) {
    char *text = nullptr;
    const int result = sqlite3_exec(db, statement, callback, context, &text);
    error.reset(text);
    return result;
}

int32_t run_statement(sqlite3 *db, const char *statement, const char *function,
                      sqlite3_callback callback, void *context) {
    SqliteError error;
    if (execute(db, statement, error, callback, context) != SQLITE_OK) {
        CMPNT_LOG_AS(log_error, function, "sqlite error: %s\n", error.text());
        return -1;
    }
    return 0;
}
