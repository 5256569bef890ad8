// The tables of the main database, and a request that names a row in each.
#ifndef CMPNT_TESTS_MAIN_TABLES_HH
#define CMPNT_TESTS_MAIN_TABLES_HH

#include "libcmpnt_db.h"
#include "tests/support/files.hh"
#include "tests/support/upgrade_records.hh"

inline void create_main_tables() {
    make_directories("/var/lib/opkg");
    for (int32_t table : {1, 2, 3, 4}) {
        cmpnt_create_pkg_table(table, CMPNT_DB_MAIN);
    }
}

// Each column of a row has a value of its own.
inline cmpnt_db_request whole_request() {
    cmpnt_db_request request = {};
    set_base_db_value(&request.base, "P", "B", "C", 4, 1, 2);
    cmpnt_pkg_record &row = request.record;
    set_upgrade_db_value(&row, "n", "k", "/p", "2", "1", 4, -1, 6, 7, "d");
    set_text(row.patch_ver, "v");
    set_text(row.patch_id, "i");
    set_text(row.effective_time, "t");
    set_text(row.last_patch, "l");
    row.patch_size = 8;
    row.patch_type = 9;
    row.patch_order = 10;
    set_text(row.hotpatch_file, "hf");
    set_text(row.hotpatch_target, "ht");
    set_text(row.hotpatch_target_path, "hp");
    set_text(row.hotpatch_target_pkg_path, "hk");
    set_text(row.hotpatch_target_md5, "hm");
    set_text(row.hotpatch_target_strip_md5, "hs");
    request.sync_id = -3;
    request.sync_flag = 1;
    return request;
}

#endif
