// The steps of a write: the operation codes, the existence test and the statements.
#ifndef CMPNT_DB_WRITE_HH
#define CMPNT_DB_WRITE_HH

#include <sqlite3.h>

#include "db/field.hh"
#include "db/statement.hh"
#include "libcmpnt_db.h"

// Operation codes of a write. The codes of a query are others, with the same numbers.
enum WriteCode {
    write_insert = 1,
    write_row = 2,
    write_delete_by_name = 3,
    write_last_version = 4,
    write_state = 5,
    write_row_by_path = 6,
    write_cur_flag_of_package_in_patch = 7,
    write_cur_flag_of_patch = 8,
    write_cur_flag_of_package = 9,
    write_cur_flag_of_version = 10,
    write_test_pkg_name = 11,
    write_state_of_package_in_patch = 12,
    write_delete_record = 13,
    write_delete_record_by_path = 14,
    write_path = 15,
    write_op_flag_of_patch = 16,
    write_op_flag_of_package_in_patch = 17,
    write_test_package_name = 18,
    write_test_row = 19,
    write_card_id_of_all = 20,
    write_sync_flag = 21,
    write_delete_sync = 22,
    write_effective_time = 23,
    write_last_patch = 24,
    write_target_pkg_path = 25
};

// What an update changes. A form that a table has no statement for changes nothing and succeeds.
enum class UpdateForm {
    row,
    state,
    cur_flag_of_package_in_patch,
    cur_flag_of_patch,
    cur_flag_of_package,
    cur_flag_of_version,
    state_of_package_in_patch,
    last_version,
    path,
    op_flag_of_patch,
    op_flag_of_package_in_patch,
    card_id_of_all,
    sync_flag,
    effective_time,
    last_patch,
    target_pkg_path
};

// What a delete looks for. A form that a table has no statement for deletes nothing and succeeds.
enum class DeleteForm { name, patch_and_path, sync_id };

// A request that names a patch, and nothing else of its record.
cmpnt_db_request request_for_patch(int32_t table, int32_t cmd, int32_t db_type,
                                   const char *patch_name);

// Tells whether the row that the request names is there, by the request's own operation code.
int32_t pkg_name_is_exist_in_db(sqlite3 *db, const cmpnt_db_request *request, int32_t *exists);

// Modes 1 and 2 insert alike; any other inserts nothing and succeeds.
int32_t insert_pkg_info_table(sqlite3 *db, const cmpnt_db_request *request, int32_t mode);
void cmpnt_set_insert_table_value(char (&sql)[statement_size], const char *table,
                                  const cmpnt_pkg_record *record);

int32_t update_pkg_info_table(sqlite3 *db, const cmpnt_db_request *request, UpdateForm form);

// Runs an update; a file that another program keeps locked is tried again, a second apart.
int32_t cmpnt_sqlite3_exec(sqlite3 *db, const char *sql);

int32_t del_pkg_info_table(sqlite3 *db, const cmpnt_db_request *request);
int32_t delete_table_record_from_db(sqlite3 *db, const cmpnt_db_request *request, DeleteForm form);

// Acts as the operation code says, given whether the row is there.
int32_t operate_pkg_info_table(sqlite3 *db, cmpnt_db_request *request, int32_t command,
                               int32_t exists);

#endif
