// Loading a whole table into a list, against SQLite's own select into an array of the same records.
#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <chrono>

#include "libcmpnt_db.h"

namespace {

constexpr char database[] = "/var/lib/opkg/cmpnt_upgrade.db3";

using Clock = std::chrono::steady_clock;

void run(sqlite3 *db, const char *sql) {
    char *error = nullptr;
    if (sqlite3_exec(db, sql, nullptr, nullptr, &error) != SQLITE_OK) {
        fprintf(stderr, "%s: %s\n", sql, error);
        abort();
    }
}

void insert_row(sqlite3 *db, int64_t i) {
    char sql[2048];
    snprintf(sql, sizeof(sql),
             "insert into pkg_upgrade_table values('SMU-%06lld-security', 'package-%lld', "
             "'/var/cache/opkg/download/SMU-%06lld.single/package-%lld_2.4.%lld.deb', '2.4.%lld', "
             "'2.3.%lld', %d, %lld, %d, %d, 'Corrects the routing of multicast frames', "
             "'1.0.%lld', 'CVE-2024-%lld', '2024-03-01 10:15:02', 'SMU-%06lld-security', %lld, 1, "
             "%d, 'hotpatch-%lld.ko', 'routed;bgpd', '/usr/sbin/routed;/usr/sbin/bgpd', "
             "'/var/cache/opkg/backup/routed_2.4.ipk;/var/cache/opkg/backup/bgpd_2.4.ipk', "
             "'0123456789abcdef0123456789abcdef;0123456789abcdef0123456789abcdef', "
             "'fedcba9876543210fedcba9876543210;fedcba9876543210fedcba9876543210')",
             (long long)i, (long long)(i % 977), (long long)i, (long long)(i % 977), (long long)i,
             (long long)i, (long long)i, i % 2 == 0 ? 4 : 6, (long long)(i % 16), (int)(i % 2),
             (int)(i % 64), (long long)i, (long long)i, (long long)i, (long long)(i * 1024),
             (int)(i % 8), (long long)i);
    run(db, sql);
}

// The main database with so many rows; made once for each number.
void make_database(int64_t rows) {
    static int64_t made = -1;
    if (rows == made) {
        return;
    }
    made = rows;
    cmpnt_mkdir("/var/lib/opkg");
    unlink(database);
    cmpnt_create_pkg_table(CMPNT_PKG_UPGRADE_TABLE, CMPNT_DB_MAIN);
    sqlite3 *db = nullptr;
    sqlite3_open(database, &db);
    run(db, "begin");
    for (int64_t i = 0; i < rows; i++) {
        insert_row(db, i);
    }
    run(db, "commit");
    sqlite3_close(db);
}

template <size_t size>
void copy_text(sqlite3_stmt *statement, int column, char (&field)[size]) {
    const unsigned char *text = sqlite3_column_text(statement, column);
    const size_t length = static_cast<size_t>(sqlite3_column_bytes(statement, column));
    const size_t kept = length < size ? length : size - 1;
    memcpy(field, text, kept);
    field[kept] = '\0';
}

void copy_row(sqlite3_stmt *row, cmpnt_upgrade_value *value) {
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

void select_into_array(RecordArray &array) {
    sqlite3 *db = nullptr;
    sqlite3_open(database, &db);
    sqlite3_stmt *statement = nullptr;
    sqlite3_prepare_v2(db, "select *from pkg_upgrade_table", -1, &statement, nullptr);
    while (sqlite3_step(statement) == SQLITE_ROW) {
        copy_row(statement, array.next());
    }
    sqlite3_finalize(statement);
    sqlite3_close(db);
}

double seconds_since(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

void report(benchmark::State &state, size_t records) {
    if (records != static_cast<size_t>(state.range(0))) {
        state.SkipWithError("not every row was loaded");
    }
}

void select_into_array(benchmark::State &state) {
    make_database(state.range(0));
    for (auto _ : state) {
        RecordArray array;
        const Clock::time_point start = Clock::now();
        select_into_array(array);
        state.SetIterationTime(seconds_since(start));
        report(state, array.count);
    }
}

void load_into_list(benchmark::State &state) {
    make_database(state.range(0));
    for (auto _ : state) {
        const Clock::time_point start = Clock::now();
        traverse_pkg_info_table(CMPNT_PKG_UPGRADE_TABLE, CMPNT_ROWS_TO_UPGRADE_LIST, 0,
                                CMPNT_DB_MAIN);
        state.SetIterationTime(seconds_since(start));
        report(state,
               static_cast<size_t>(cmpnt_get_upgrade_list_count(nullptr, 0, CMPNT_UPGRADE_LIST)));
        recycle_upgrade_list(CMPNT_UPGRADE_LIST);
    }
}

void row_counts(benchmark::internal::Benchmark *bench) {
    bench->ArgName("rows")->Arg(100)->Arg(1000)->Arg(10000)->Arg(100000);
    bench->UseManualTime()->Unit(benchmark::kMicrosecond);
}

BENCHMARK(select_into_array)->Name("list_load/raw")->Apply(row_counts);
BENCHMARK(load_into_list)->Name("list_load/library")->Apply(row_counts);

}  // namespace
