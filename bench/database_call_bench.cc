// Database calls beside the same exchange made by hand: lock, open, the ready statements, close, and
// the copy over the backup where it belongs to the call.
#include <fcntl.h>
#include <sqlite3.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "bench/pair.hh"
#include "libcmpnt_db.h"

namespace {

constexpr char lock_path[] = "/tmp/.cmpnt_db_lock";
constexpr char main_path[] = "/var/lib/opkg/cmpnt_upgrade.db3";
constexpr char kept_path[] = "/var/lib/opkg/cmpnt_upgrade.db3-calls";
constexpr char auto_sync_path[] = "/var/lib/opkg/cmpnt_auto_sync.db3";
constexpr char copy_line[] =
    "cp -rf /var/lib/opkg/cmpnt_upgrade.db3 /data/cmpnt/opkg/cmpnt_upgrade_backup.db3";
constexpr int rows = 100;
constexpr char wanted_patch[] = "SMU-50";
enum : int32_t { insert_row = 1, change_row = 2, change_state = 5 };  // of a write
enum : int32_t { by_patch = 3 };                                      // of a query

void fill_record(cmpnt_pkg_record &record, int number) {
    record = {};
    snprintf(record.patch_name, sizeof(record.patch_name), "SMU-%d", number);
    snprintf(record.pkg_name, sizeof(record.pkg_name), "package-%d", number % 7);
    snprintf(record.cur_pkg_path, sizeof(record.cur_pkg_path),
             "/var/cache/opkg/download/SMU-%d.single/package-%d.deb", number, number % 7);
    snprintf(record.cur_version, sizeof(record.cur_version), "2.4.%d", number);
    snprintf(record.last_version, sizeof(record.last_version), "2.3.%d", number);
    record.pkg_state = CMPNT_STATE_ACTIVE;
    snprintf(record.description, sizeof(record.description), "Corrects the multicast routes");
    snprintf(record.patch_id, sizeof(record.patch_id), "CVE-2024-%d", number);
}

cmpnt_db_request request_for(int32_t table, int32_t db_type, int32_t code) {
    cmpnt_db_request request = {};
    request.table = table;
    request.db_type = db_type;
    request.cmd = code;
    fill_record(request.record, 50);
    return request;
}

void must(bool good, const char *what) {
    if (!good) {
        fprintf(stderr, "%s failed\n", what);
        abort();
    }
}

sqlite3 *open_database(const char *path) {
    sqlite3 *db = nullptr;
    must(sqlite3_open(path, &db) == SQLITE_OK, "sqlite3_open");
    return db;
}

void execute(sqlite3 *db, const char *sql, sqlite3_callback callback = nullptr,
             void *context = nullptr) {
    must(sqlite3_exec(db, sql, callback, context, nullptr) == SQLITE_OK, sql);
}

void make_table(int32_t table, int32_t db_type, const char *path) {
    unlink(path);
    must(cmpnt_create_pkg_table(table, db_type) == 0, "cmpnt_create_pkg_table");
    for (int i = 0; i < rows; i++) {
        cmpnt_db_request request = request_for(table, db_type, insert_row);
        fill_record(request.record, i);
        must(cmpnt_operate_pkg_database(&request, insert_row) == 0, "insert");
    }
}

void make_databases() {
    cmpnt_mkdir("/var/lib/opkg");
    cmpnt_mkdir("/data/cmpnt/opkg");
    make_table(CMPNT_AUTO_SYNC_TABLE, CMPNT_DB_AUTO_SYNC, auto_sync_path);
    make_table(CMPNT_PKG_UPGRADE_TABLE, CMPNT_DB_MAIN, main_path);
    must(rename(main_path, kept_path) == 0, kept_path);
}

// Other benchmarks put main files of their own in its place.
void provide_databases() {
    if (file_is_exist(kept_path) == 0) {
        make_databases();
    }
    unlink(main_path);
    must(link(kept_path, main_path) == 0, main_path);
}

int take_lock() {
    const int fd = open(lock_path, O_RDWR | O_CREAT | O_CLOEXEC, 0777);
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    must(fd >= 0 && fcntl(fd, F_SETLKW, &lock) == 0, "the lock");
    return fd;
}

int note_row(void *seen, int, char **, char **) {
    *static_cast<bool *>(seen) = true;
    return 0;
}

// The existence test and the change, under the lock.
void change_by_hand(const char *path, const char *test, const char *change) {
    sqlite3 *db = open_database(path);
    bool seen = false;
    execute(db, test, note_row, &seen);
    must(seen, "the existence test");
    execute(db, change);
    sqlite3_close(db);
}

void write_with_library(benchmark::State &state, cmpnt_db_request request) {
    provide_databases();
    for (auto _ : state) {
        const double start = seconds_with_children();
        must(cmpnt_operate_pkg_database(&request, request.cmd) == 0, "write");
        state.SetIterationTime(seconds_with_children() - start);
    }
}

// --- a write without a copy: every column of an auto-sync row ---------------------------------

void change_auto_sync_row(benchmark::State &state) {
    write_with_library(state, request_for(CMPNT_AUTO_SYNC_TABLE, CMPNT_DB_AUTO_SYNC, change_row));
}

void change_auto_sync_row_by_hand(benchmark::State &state) {
    provide_databases();
    for (auto _ : state) {
        const double start = seconds_with_children();
        const int lock = take_lock();
        change_by_hand(
            auto_sync_path, "select *from auto_sync_table where patch_name = 'SMU-50'",
            "update auto_sync_table set pkg_name = 'package-1', cur_pkg_path = "
            "'/var/cache/opkg/download/SMU-50.single/package-1.deb', cur_version = '2.4.50', "
            "last_version = '2.3.50', pkg_state = '4', card_id = '0', cur_flag = '0', op_flag = "
            "'0', description = 'Corrects the multicast routes', patch_ver = '', patch_id = "
            "'CVE-2024-50', effective_time = '', last_patch = '', patch_size = '0', patch_type = "
            "'0', patch_order = '0' where patch_name = 'SMU-50'");
        close(lock);
        state.SetIterationTime(seconds_with_children() - start);
    }
}

// --- a write with the copy of the main file ---------------------------------------------------

void change_main_row(benchmark::State &state) {
    write_with_library(state, request_for(CMPNT_PKG_UPGRADE_TABLE, CMPNT_DB_MAIN, change_state));
}

void copy_by_popen() {
    FILE *output = popen(copy_line, "r");
    char line[CMPNT_LINE_SIZE];
    while (fgets(line, sizeof(line), output) != nullptr) {}
    must(pclose(output) == 0, copy_line);
}

void change_main_row_by_hand(benchmark::State &state) {
    provide_databases();
    for (auto _ : state) {
        const double start = seconds_with_children();
        const int lock = take_lock();
        change_by_hand(main_path, "select *from pkg_upgrade_table where patch_name = 'SMU-50'",
                       "update pkg_upgrade_table set pkg_state = 4 where patch_name = 'SMU-50'");
        copy_by_popen();
        close(lock);
        state.SetIterationTime(seconds_with_children() - start);
    }
}

// --- a query: the whole table is read, one row is wanted --------------------------------------

void query_patch(benchmark::State &state) {
    provide_databases();
    cmpnt_db_request request = request_for(CMPNT_PKG_UPGRADE_TABLE, CMPNT_DB_MAIN, by_patch);
    for (auto _ : state) {
        request.exist = 0;
        must(cmpnt_get_pkg_info_database(&request) == 0 && request.exist == 1, "query");
    }
}

template <size_t size>
void copy_text(char (&field)[size], const char *text) {
    const size_t length = text == nullptr ? 0 : strnlen(text, size - 1);
    if (length > 0) {
        memcpy(field, text, length);
    }
    field[length] = '\0';
}

int32_t number_of(const char *text) {
    return text == nullptr ? 0 : static_cast<int32_t>(strtol(text, nullptr, 10));
}

int copy_wanted_row(void *context, int, char **values, char **) {
    if (strcmp(values[0], wanted_patch) != 0) {
        return 0;
    }
    cmpnt_pkg_record &record = *static_cast<cmpnt_pkg_record *>(context);
    copy_text(record.patch_name, values[0]);
    copy_text(record.pkg_name, values[1]);
    copy_text(record.cur_pkg_path, values[2]);
    copy_text(record.cur_version, values[3]);
    copy_text(record.last_version, values[4]);
    record.pkg_state = number_of(values[5]);
    record.card_id = number_of(values[6]);
    record.cur_flag = number_of(values[7]);
    record.op_flag = number_of(values[8]);
    copy_text(record.description, values[9]);
    copy_text(record.patch_ver, values[10]);
    copy_text(record.patch_id, values[11]);
    copy_text(record.effective_time, values[12]);
    copy_text(record.last_patch, values[13]);
    record.patch_size = number_of(values[14]);
    record.patch_type = number_of(values[15]);
    record.patch_order = number_of(values[16]);
    copy_text(record.hotpatch_file, values[17]);
    copy_text(record.hotpatch_target, values[18]);
    copy_text(record.hotpatch_target_path, values[19]);
    copy_text(record.hotpatch_target_pkg_path, values[20]);
    return 0;
}

void query_patch_by_hand(benchmark::State &state) {
    provide_databases();
    cmpnt_pkg_record record;
    for (auto _ : state) {
        record.patch_name[0] = '\0';
        const int lock = take_lock();
        sqlite3 *db = open_database(main_path);
        execute(db, "select *from pkg_upgrade_table", copy_wanted_row, &record);
        sqlite3_close(db);
        close(lock);
        must(strcmp(record.patch_name, wanted_patch) == 0, "query by hand");
    }
}

const bool added = add_pair("database write", 1.05, change_auto_sync_row,
                            change_auto_sync_row_by_hand, 0, BenchClock::manual) &&
                   add_pair("database write with its copy", 1.05, change_main_row,
                            change_main_row_by_hand, 0, BenchClock::manual) &&
                   add_pair("database query", 1.05, query_patch, query_patch_by_hand);

}  // namespace
