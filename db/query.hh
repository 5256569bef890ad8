// One query on its way through the rows of its table.
#ifndef CMPNT_DB_QUERY_HH
#define CMPNT_DB_QUERY_HH

#include "db/request_row.hh"
#include "db/upgrade_value_row.hh"
#include "libcmpnt_db.h"

// What a request's `cmd` asks of the rows of pkg_upgrade_table. These are not the write codes.
enum QueryCode {
    query_patch_of_pkg = 1,
    query_newer_version = 2,
    query_patch = 3,
    query_version_of_pkg = 4,
    query_path = 5,
    query_active = 6,
    query_active_current = 7,
    query_patch_into_list = 8,
    query_current = 9,
    query_active_ready = 10,
    query_deactive_ready = 11,
    query_op_flag_bit_2 = 12
};

// ... of package_info_table, and of server_table.
enum BaseQueryCode { base_query_deactive_cold = 1, base_query_package = 2 };
enum ServerQueryCode { server_query_sync_id = 13 };

struct Query {
    explicit Query(cmpnt_db_request *request) : req(request) {}

    cmpnt_db_request *req;
    bool row_was_found = false;  // in this select
    RowCopier base_records = base_record_copier();
    RowCopier pkg_records = pkg_record_copier();
    RowCopier upgrade_values = upgrade_value_copier();
};

// The row callback of a query: matches the row by the request's table and `cmd`, and puts what was
// asked for into the request.
int read_pkg_info_table_callback(void *query, int columns, char **values, char **names);

#endif
