// Reading the main database, and writing to it through the library.
#ifndef CMPNTCTL_MAIN_DATABASE_HH
#define CMPNTCTL_MAIN_DATABASE_HH

#include <sqlite3.h>

#include <functional>
#include <string>
#include <vector>

#include "command.hh"
#include "database_files.hh"
#include "libcmpnt_db.h"

namespace cmpntctl {

// Throws a Failure (nothing) when there is no main database.
void require_main_database();

// Runs a select with its "?" filled in, and hands over each row. The database lock is held meanwhile,
// so the callback does not print. Throws a Failure when there is no database, or a damaged one.
void read_rows(const Session &session, const std::string &select,
               const std::vector<std::string> &values,
               const std::function<void(sqlite3_stmt *)> &row);

// A column as text; NULL reads as "".
std::string column_text(sqlite3_stmt *row, int column);

// Runs one write by its operation code (docs/database.md); what is told of in the Failure:
// "the state of bash cannot be set".
void write_record(const Session &session, cmpnt_db_request &request, int32_t code,
                  const std::string &what);

// The Failure when a call of the library did not succeed.
Failure library_failure(const std::string &what);

}  // namespace cmpntctl

#endif
