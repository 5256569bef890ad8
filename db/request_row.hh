// Rows as the answers in a request.
#ifndef CMPNT_DB_REQUEST_ROW_HH
#define CMPNT_DB_REQUEST_ROW_HH

#include "db/row.hh"
#include "libcmpnt_db.h"

// Copiers of one statement's rows into the package record and the base package record.
RowCopier pkg_record_copier();
RowCopier base_record_copier();

// Copies a row of package_info_table into the request's base record.
void cmpnt_set_base_value(cmpnt_db_request *req, const Row &row, RowCopier &copier);

#endif
