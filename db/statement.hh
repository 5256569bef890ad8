// One SQL statement: its buffer, its error text, its run.
#ifndef CMPNT_DB_STATEMENT_HH
#define CMPNT_DB_STATEMENT_HH

#include <sqlite3.h>
#include <stddef.h>
#include <stdint.h>

#include "common/guard.hh"

// A longer statement is cut to this and then refused by SQLite.
inline constexpr size_t statement_size = 3584;

struct SqliteTextTraits {
    using Value = char *;
    static Value none() { return nullptr; }
    static void release(Value text) { sqlite3_free(text); }
};

// SQLite's error text; SQLite has none to give when memory is out.
class SqliteError : public ScopeGuard<SqliteTextTraits> {
public:
    const char *text() const { return get() == nullptr ? "(null)" : get(); }
};

// Runs a statement, or a select with a row callback, without a retry: 0 or -1. An empty statement
// succeeds. An error is logged as "sqlite error: ..." in the function's name.
int32_t run_statement(sqlite3 *db, const char *statement, const char *function,
                      sqlite3_callback callback = nullptr, void *context = nullptr);

// sqlite3_exec with the error text in a guard; SQLite's own result.
int execute(sqlite3 *db, const char *statement, SqliteError &error,
            sqlite3_callback callback = nullptr, void *context = nullptr);

#endif
