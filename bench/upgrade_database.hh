// Main databases of as many upgrade records as a benchmark wants, and their records as SQLite alone
// gives them.
#ifndef CMPNT_BENCH_UPGRADE_DATABASE_HH
#define CMPNT_BENCH_UPGRADE_DATABASE_HH

#include <sqlite3.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <string>

#include "libcmpnt_db.h"

inline constexpr char main_database[] = "/var/lib/opkg/cmpnt_upgrade.db3";

// As many SMUs as ?1 says, with names of their own.
inline constexpr char insert_upgrades[] =
    "with recursive n(i) as (select 1 union all select i + 1 from n where i < ?1) "
    "insert into pkg_upgrade_table select printf('SMU-%06d-security', i), 'package-' || (i % 977), "
    "printf('/var/cache/opkg/download/SMU-%06d.single/package-%d_2.4.%d.deb', i, i % 977, i), "
    "'2.4.' || i, '2.3.' || i, iif(i % 2, 4, 6), i % 16, i % 2, i % 64, "
    "'Corrects the routing of multicast frames', '1.0.' || i, 'CVE-2024-' || i, "
    "'2024-03-01 10:15:02', printf('SMU-%06d-security', i - 1), i * 1024, 1, i % 8, "
    "'hotpatch-' || i || '.ko', 'routed;bgpd', '/usr/sbin/routed;/usr/sbin/bgpd', "
    "'/var/cache/opkg/backup/routed_2.4.ipk;/var/cache/opkg/backup/bgpd_2.4.ipk', "
    "'0123456789abcdef0123456789abcdef;0123456789abcdef0123456789abcdef', "
    "'fedcba9876543210fedcba9876543210;fedcba9876543210fedcba9876543210' from n";

inline void make_database(const std::string &file, int64_t rows) {
    unlink(main_database);
    cmpnt_create_pkg_table(CMPNT_PKG_UPGRADE_TABLE, CMPNT_DB_MAIN);
    sqlite3 *db = nullptr;
    sqlite3_open(main_database, &db);
    sqlite3_stmt *statement = nullptr;
    sqlite3_prepare_v2(db, insert_upgrades, -1, &statement, nullptr);
    sqlite3_bind_int64(statement, 1, rows);
    if (sqlite3_step(statement) != SQLITE_DONE) {
        fprintf(stderr, "%s: %s\n", main_database, sqlite3_errmsg(db));
        abort();
    }
    sqlite3_finalize(statement);
    sqlite3_close(db);
    rename(main_database, file.c_str());
}

// Puts a database of so many rows in the place of the main file. Each size is made once.
inline void provide_database(int64_t rows) {
    const std::string file = main_database + std::to_string(rows);
    if (file_is_exist(file.c_str()) == 0) {
        cmpnt_mkdir("/var/lib/opkg");
        make_database(file, rows);
    }
    unlink(main_database);
    if (link(file.c_str(), main_database) != 0) {
        abort();
    }
}

template <size_t size>
inline void copy_text(sqlite3_stmt *statement, int column, char (&field)[size]) {
    const unsigned char *text = sqlite3_column_text(statement, column);
    const size_t length = static_cast<size_t>(sqlite3_column_bytes(statement, column));
    const size_t kept = length < size ? length : size - 1;
    memcpy(field, text, kept);
    field[kept] = '\0';
}

inline void copy_row(sqlite3_stmt *row, cmpnt_upgrade_value *value) {
    copy_text(row, 0, value->patch_name);
    copy_text(row, 1, value->pkg_name);
    copy_text(row, 2, value->cur_pkg_path);
    copy_text(row, 3, value->cur_version);
    copy_text(row, 4, value->last_version);
    const char *state = sqlite3_column_int(row, 5) == CMPNT_STATE_ACTIVE ? "active" : "running";
    strcpy(value->state_name, state);
    strcpy(value->pkg_state_name, state);
    value->card_id = sqlite3_column_int(row, 6);
    value->cur_flag = sqlite3_column_int(row, 7);
    value->op_flag = sqlite3_column_int(row, 8);
    copy_text(row, 9, value->description);
    copy_text(row, 10, value->patch_ver);
    copy_text(row, 11, value->patch_id);
    copy_text(row, 12, value->effective_time);
    copy_text(row, 13, value->last_patch);
    value->patch_size = sqlite3_column_int(row, 14);
    value->patch_type = sqlite3_column_int(row, 15);
    value->patch_order = sqlite3_column_int(row, 16);
    copy_text(row, 17, value->hotpatch_file);
    copy_text(row, 18, value->hotpatch_target);
    copy_text(row, 19, value->hotpatch_target_path);
    copy_text(row, 20, value->hotpatch_target_pkg_path);
    copy_text(row, 21, value->hotpatch_target_md5);
    copy_text(row, 22, value->hotpatch_target_strip_md5);
}

// What a program does that wants the records and nothing else: columns by position, numbers as
// numbers, one array that grows.
struct RecordArray {
    cmpnt_upgrade_value *records = nullptr;
    size_t count = 0;
    size_t capacity = 0;

    ~RecordArray() { free(records); }

    cmpnt_upgrade_value *next() {
        if (count == capacity) {
            capacity = capacity == 0 ? 64 : capacity * 2;
            records = static_cast<cmpnt_upgrade_value *>(
                realloc(static_cast<void *>(records), capacity * sizeof(*records)));
        }
        cmpnt_upgrade_value *record = &records[count++];
        memset(record, 0, sizeof(*record));
        return record;
    }
};

inline void select_into_array(RecordArray &array) {
    sqlite3 *db = nullptr;
    sqlite3_open(main_database, &db);
    sqlite3_stmt *statement = nullptr;
    sqlite3_prepare_v2(db, "select *from pkg_upgrade_table", -1, &statement, nullptr);
    while (sqlite3_step(statement) == SQLITE_ROW) {
        copy_row(statement, array.next());
    }
    sqlite3_finalize(statement);
    sqlite3_close(db);
}

#endif
