// The steps of a write: the operation codes, the existence test and the statements.
#ifndef CMPNT_DB_WRITE_HH
#define CMPNT_DB_WRITE_HH

#include <sqlite3.h>

#include "db/field.hh"
#include "db/statement.hh"
#include "libcmpnt_db.h"

// Operation codes of a write. The codes of a query are others, with the same numbers.
enum WriteCode {
    WRITE_INSERT = 1,
    WRITE_ROW = 2,
    WRITE_DELETE_BY_NAME = 3,
    WRITE_LAST_VERSION = 4,
    WRITE_STATE = 5,
    WRITE_ROW_BY_PATH = 6,
    WRITE_CUR_FLAG_OF_PACKAGE_IN_PATCH = 7,
    WRITE_CUR_FLAG_OF_PATCH = 8,
    WRITE_CUR_FLAG_OF_PACKAGE = 9,
    WRITE_CUR_FLAG_OF_VERSION = 10,
    WRITE_TEST_PKG_NAME = 11,
    WRITE_STATE_OF_PACKAGE_IN_PATCH = 12,
    WRITE_DELETE_RECORD = 13,
    WRITE_DELETE_RECORD_BY_PATH = 14,
    WRITE_PATH = 15,
    WRITE_OP_FLAG_OF_PATCH = 16,
    WRITE_OP_FLAG_OF_PACKAGE_IN_PATCH = 17,
    WRITE_TEST_PACKAGE_NAME = 18,
    WRITE_TEST_ROW = 19,
    WRITE_CARD_ID_OF_ALL = 20,
    WRITE_SYNC_FLAG = 21,
    WRITE_DELETE_SYNC = 22,
    WRITE_EFFECTIVE_TIME = 23,
    WRITE_LAST_PATCH = 24,
    WRITE_TARGET_PKG_PATH = 25
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
