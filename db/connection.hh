// The way to a database file: which file a selector names, and the exchange of every database call.
#ifndef CMPNT_DB_CONNECTION_HH
#define CMPNT_DB_CONNECTION_HH

#include <sqlite3.h>

#include "common/guard.hh"
#include "libcmpnt_db.h"

// Path of the file that a selector names, kept in the buffer where it has to be put together. Null
// when the temporary directory leaves no room for it.
const char *database_path(int32_t db_type, char (&buffer)[CMPNT_PATH_SIZE]);

struct DatabaseLockTraits {
    using Value = int32_t;
    static Value none() { return -1; }
    static void release(Value fd) { cmpnt_close(fd); }
};
using DatabaseLock = ScopeGuard<DatabaseLockTraits>;

struct DatabaseTraits {
    using Value = sqlite3 *;
    static Value none() { return nullptr; }
    static void release(Value db) { sqlite3_close(db); }
};
using Database = ScopeGuard<DatabaseTraits>;

// One database exchange: lock, open ... close, unlock. What was begun ends with the scope, the file
// before the lock.
//
//     DatabaseExchange exchange;
//     if (exchange.begin(CMPNT_DB_MAIN, __func__) != 0) {
//         return -1;
//     }
//     ... exchange.db() ...
//     const int closed = exchange.close();  // the lock is held on until the scope ends
class DatabaseExchange {
public:
    // Takes the lock and opens the file: 0 or -1. A failure is logged in the function's name.
    int32_t begin(int32_t db_type, const char *function);

    sqlite3 *db() const { return database_.get(); }

    // The result of sqlite3_close; a close is never tried again.
    int close() { return sqlite3_close(database_.release()); }

private:
    DatabaseLock lock_;  // declared first: released last
    Database database_;
};

#endif
