#include <fcntl.h>
#include <string.h>

#include "db/write.hh"
#include "tests/support/child.hh"
#include "tests/support/device_test.hh"
#include "tests/support/main_tables.hh"
#include "tests/support/sqlite.hh"

namespace {

// A selector that opens the main file, and for which nothing is copied: to be quick.
constexpr int32_t main_without_backup = 7;

std::vector<SqlRow> upgrade_rows(const std::string &columns) {
    return sql(main_db, "select " + columns + " from pkg_upgrade_table");
}

}  // namespace

class Operate : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        create_main_tables();
        make_directories("/data/cmpnt/opkg");
    }

    // A record of pkg_upgrade_table, and an operation on it.
    int32_t on_upgrade(int32_t code, const char *patch, const char *package,
                       const char *path = "/path", const char *version = "1") {
        request.table = CMPNT_PKG_UPGRADE_TABLE;
        strcpy(request.record.patch_name, patch);
        strcpy(request.record.pkg_name, package);
        strcpy(request.record.cur_pkg_path, path);
        strcpy(request.record.cur_version, version);
        return operate(code);
    }

    int32_t on_base(int32_t code, const char *name, const char *version) {
        request.table = CMPNT_PACKAGE_INFO_TABLE;
        strcpy(request.base.package_name, name);
        strcpy(request.base.base_version, version);
        return operate(code);
    }

    int32_t on_server(int32_t code, int32_t id, int32_t flag) {
        request.table = CMPNT_SERVER_TABLE;
        request.sync_id = id;
        request.sync_flag = flag;
        return operate(code);
    }

    int32_t operate(int32_t code) {
        request.cmd = code;
        return cmpnt_operate_pkg_database(&request, code);
    }

    // Three rows that tell the forms apart: two packages of one patch, one of another.
    void add_rows() {
        sql(main_db,
            "insert into pkg_upgrade_table(patch_name, pkg_name, cur_pkg_path, cur_version, "
            "pkg_state, cur_flag, op_flag, card_id) values"
            "('p', 'a', '/pa', '1', 2, 0, 0, 0), "
            "('p', 'b', '/pb', '1', 4, 0, 0, 0), "
            "('q', 'a', '/qa', '1', 4, 0, 0, 0)");
    }

    cmpnt_db_request request = {};
};

TEST_F(Operate, Code1InsertsAnAbsentPatchAlone) {
    EXPECT_EQ(on_upgrade(1, "p", "a"), 0);
    EXPECT_EQ(on_upgrade(1, "p", "b"), 0);  // the patch is there
    EXPECT_EQ(on_upgrade(1, "q", "a"), 0);
    EXPECT_EQ(upgrade_rows("patch_name, pkg_name"), (std::vector<SqlRow>{{"p", "a"}, {"q", "a"}}));
    EXPECT_EQ(on_base(1, "name", "1.0"), 0);
    EXPECT_EQ(on_base(1, "name", "1.0"), 0);
    EXPECT_EQ(on_base(1, "name", "2.0"), 0);
    EXPECT_EQ(sql(main_db, "select base_version from package_info_table"),
              (std::vector<SqlRow>{{"1.0"}, {"2.0"}}));
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(Operate, Code2InsertsAnAbsentPackageOfAPatch) {
    EXPECT_EQ(on_upgrade(2, "p", "a"), 0);
    EXPECT_EQ(on_upgrade(2, "p", "b"), 0);
    EXPECT_EQ(upgrade_rows("patch_name, pkg_name"), (std::vector<SqlRow>{{"p", "a"}, {"p", "b"}}));
}

TEST_F(Operate, Code2FailsForAnUpgradeRowThatIsThere) {
    ASSERT_EQ(on_upgrade(2, "p", "a"), 0);
    forget_log();
    EXPECT_EQ(on_upgrade(2, "p", "a", "/other", "2"), -1);
    const std::vector<TraceLine> lines = trace_lines();
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0].function, "cmpnt_sqlite3_exec");
    EXPECT_EQ(lines[0].message.find("sqlite error: near \"where\": syntax error, table(update "
                                    "pkg_upgrade_table set pkg_name = 'a'"),
              0u);
    EXPECT_EQ(lines[1].message, "cmpnt_sqlite3_exec fail\n");
    EXPECT_TRUE(logged("CMPNT_ERROR", "operate_pkg_info_table", "update pkg info table fail.\n"));
    EXPECT_TRUE(
        logged("CMPNT_ERROR", "cmpnt_operate_pkg_database", "operate_pkg_info_table fail.\n"));
    EXPECT_EQ(fault::calls("nanosleep"), 0);
    EXPECT_EQ(upgrade_rows("cur_pkg_path, cur_version"), (std::vector<SqlRow>{{"/path", "1"}}));
}

TEST_F(Operate, Code2UpdatesABasePackageThatIsThere) {
    ASSERT_EQ(on_base(2, "name", "1.0"), 0);
    strcpy(request.base.current_version, "1.1");
    request.base.package_state = 6;
    EXPECT_EQ(on_base(2, "name", "1.0"), 0);
    EXPECT_EQ(sql(main_db, "select * from package_info_table"),
              (std::vector<SqlRow>{{"name", "1.0", "1.1", "6", "0", "0"}}));
}

TEST_F(Operate, Code2KeepsOneAutoSyncRowAPatch) {
    request.table = CMPNT_AUTO_SYNC_TABLE;
    request.db_type = CMPNT_DB_AUTO_SYNC;
    cmpnt_create_pkg_table(CMPNT_AUTO_SYNC_TABLE, CMPNT_DB_AUTO_SYNC);
    strcpy(request.record.patch_name, "p");
    EXPECT_EQ(operate(2), 0);
    strcpy(request.record.cur_version, "2");
    EXPECT_EQ(operate(2), 0);
    EXPECT_EQ(sql(auto_sync_db, "select patch_name, cur_version from auto_sync_table"),
              (std::vector<SqlRow>{{"p", "2"}}));
}

TEST_F(Operate, Code3DeletesByNameInTheFirstTwoTables) {
    add_rows();
    EXPECT_EQ(on_upgrade(3, "p", ""), 0);
    EXPECT_EQ(upgrade_rows("patch_name"), (std::vector<SqlRow>{{"q"}}));
    EXPECT_EQ(on_upgrade(3, "absent", ""), 0);
    sql(main_db,
        "insert into package_info_table(package_name, base_version) values('n', '1'), ('n', '2')");
    EXPECT_EQ(on_base(3, "n", "3"), 0);  // no such row
    EXPECT_EQ(sql(main_db, "select count(*) from package_info_table"),
              (std::vector<SqlRow>{{"2"}}));
    EXPECT_EQ(on_base(3, "n", "1"), 0);  // takes all rows of the name
    EXPECT_EQ(sql(main_db, "select count(*) from package_info_table"),
              (std::vector<SqlRow>{{"0"}}));
    sql(main_db, "insert into auto_sync_table(patch_name) values('p')");
    request.table = CMPNT_AUTO_SYNC_TABLE;
    strcpy(request.record.patch_name, "p");
    EXPECT_EQ(operate(3), 0);
    EXPECT_EQ(sql(main_db, "select count(*) from auto_sync_table"), (std::vector<SqlRow>{{"1"}}));
}

TEST_F(Operate, CodesSetOneFieldOfTheRowsThatTheyName) {
    request.db_type = main_without_backup;
    cmpnt_pkg_record &record = request.record;
    const struct {
        int32_t code;
        const char *patch, *package, *version;
        const char *column;
        std::vector<SqlRow> rows;  // after it, of pa, pb, qa
    } cases[] = {
        {4, "p", "a", "1", "last_version", {{"L"}, {"NULL"}, {"NULL"}}},
        {4, "p", "c", "1", "last_version", {{"NULL"}, {"NULL"}, {"NULL"}}},
        {5, "p", "not looked at", "1", "pkg_state", {{"6"}, {"6"}, {"4"}}},
        {5, "r", "a", "1", "pkg_state", {{"2"}, {"4"}, {"4"}}},
        {7, "p", "b", "1", "cur_flag", {{"0"}, {"7"}, {"0"}}},
        {7, "q", "b", "1", "cur_flag", {{"0"}, {"0"}, {"0"}}},
        {8, "p", "", "1", "cur_flag", {{"7"}, {"7"}, {"0"}}},
        {9, "", "a", "1", "cur_flag", {{"7"}, {"0"}, {"7"}}},
        {10, "", "a", "1", "cur_flag", {{"0"}, {"0"}, {"7"}}},  // not the installed one
        {10, "", "a", "2", "cur_flag", {{"0"}, {"0"}, {"0"}}},
        {12, "p", "b", "1", "pkg_state", {{"2"}, {"6"}, {"4"}}},
        {12, "p", "c", "1", "pkg_state", {{"2"}, {"4"}, {"4"}}},  // the patch is there: success
        {15, "p", "a", "1", "cur_pkg_path", {{"/C"}, {"/pb"}, {"/qa"}}},
        {15, "r", "a", "1", "cur_pkg_path", {{"/pa"}, {"/pb"}, {"/qa"}}},
        {16, "p", "", "1", "op_flag", {{"8"}, {"8"}, {"0"}}},
        {17, "p", "b", "1", "op_flag", {{"0"}, {"8"}, {"0"}}},
        {17, "p", "c", "1", "op_flag", {{"0"}, {"0"}, {"0"}}},
        {20, "absent", "", "1", "card_id", {{"9"}, {"9"}, {"9"}}},
        {23, "p", "", "1", "effective_time", {{"T"}, {"T"}, {"NULL"}}},
        {24, "p", "", "1", "last_patch", {{"B"}, {"B"}, {"NULL"}}},
        {25, "p", "b", "1", "hotpatch_target_pkg_path", {{"NULL"}, {"K"}, {"NULL"}}},
        {25, "p", "c", "1", "hotpatch_target_pkg_path", {{"NULL"}, {"NULL"}, {"NULL"}}},
    };
    strcpy(record.last_version, "L");
    strcpy(record.effective_time, "T");
    strcpy(record.last_patch, "B");
    strcpy(record.hotpatch_target_pkg_path, "K");
    record.pkg_state = 6;
    record.cur_flag = 7;
    record.op_flag = 8;
    record.card_id = 9;
    for (const auto &one : cases) {
        SCOPED_TRACE(std::to_string(one.code) + " " + one.patch + " " + one.package);
        sql(main_db, "delete from pkg_upgrade_table");
        add_rows();
        EXPECT_EQ(on_upgrade(one.code, one.patch, one.package, "/C", one.version), 0);
        EXPECT_EQ(upgrade_rows(one.column), one.rows);
    }
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(Operate, Code6InsertsWhereTheFileIsNotRecorded) {
    EXPECT_EQ(on_upgrade(6, "p", "a", "/1"), 0);
    EXPECT_EQ(on_upgrade(6, "p", "a", "/2"), 0);
    EXPECT_EQ(upgrade_rows("patch_name, cur_pkg_path"),
              (std::vector<SqlRow>{{"p", "/1"}, {"p", "/2"}}));
    EXPECT_EQ(on_upgrade(6, "p", "b", "/1"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "operate_pkg_info_table", "update pkg info table fail.\n"));
}

TEST_F(Operate, TestsPutTheirAnswerIntoTheRequest) {
    add_rows();
    sql(main_db, "insert into package_info_table(package_name, base_version) values('n', '1')");
    request.exist = 5;
    EXPECT_EQ(on_upgrade(11, "not looked at", "b"), 0);
    EXPECT_EQ(request.exist, 1);
    EXPECT_EQ(on_upgrade(11, "p", "p"), 0);  // p is a patch, not a package
    EXPECT_EQ(request.exist, 0);
    EXPECT_EQ(on_base(18, "n", "not looked at"), 0);
    EXPECT_EQ(request.exist, 1);
    EXPECT_EQ(on_base(18, "m", "1"), 0);
    EXPECT_EQ(request.exist, 0);
    EXPECT_EQ(on_upgrade(19, "q", ""), 0);
    EXPECT_EQ(request.exist, 1);
    EXPECT_EQ(on_base(19, "n", "2"), 0);
    EXPECT_EQ(request.exist, 0);
}

TEST_F(Operate, OtherCodesLeaveTheRequestAsItIs) {
    add_rows();
    request.exist = 5;
    EXPECT_EQ(on_upgrade(8, "p", "a"), 0);
    EXPECT_EQ(request.exist, 5);
}

TEST_F(Operate, Code12FailsForAnAbsentPatch) {
    add_rows();
    EXPECT_EQ(on_upgrade(12, "r", "a"), -1);
    EXPECT_EQ(trace_messages(),
              (std::vector<std::string>{
                  "error operate_pkg_info_table: patch_name(r), pkg_name(a) is not exist in "
                  "db.\n",
                  "error cmpnt_operate_pkg_database: operate_pkg_info_table fail.\n"}));
    EXPECT_TRUE(logged("CMPNT_ERROR", "operate_pkg_info_table",
                       "patch_name(r), pkg_name(a) is not exist in db.\n"));
}

TEST_F(Operate, Code13DeletesAllRowsOfTheName) {
    add_rows();
    EXPECT_EQ(on_upgrade(13, "p", ""), 0);
    EXPECT_EQ(upgrade_rows("patch_name"), (std::vector<SqlRow>{{"q"}}));
    sql(main_db, "insert into auto_sync_table(patch_name) values('p'), ('q')");
    request.table = CMPNT_AUTO_SYNC_TABLE;
    strcpy(request.record.patch_name, "p");
    EXPECT_EQ(operate(13), 0);
    EXPECT_EQ(sql(main_db, "select patch_name from auto_sync_table"), (std::vector<SqlRow>{{"q"}}));
    EXPECT_EQ(on_upgrade(13, "absent", ""), 0);
}

TEST_F(Operate, Code14DeletesTheRowsOfAPatchWithThePath) {
    add_rows();
    EXPECT_EQ(on_upgrade(14, "p", "", "/pb"), 0);
    EXPECT_EQ(on_upgrade(14, "p", "", "/qa"), 0);
    EXPECT_EQ(upgrade_rows("cur_pkg_path"), (std::vector<SqlRow>{{"/pa"}, {"/qa"}}));
}

TEST_F(Operate, Code21InsertsOrUpdatesAServerRow) {
    EXPECT_EQ(on_server(21, 5, 0), 0);
    EXPECT_EQ(on_server(21, 6, 0), 0);
    EXPECT_EQ(on_server(21, 5, 1), 0);
    EXPECT_EQ(sql(main_db, "select * from server_table"),
              (std::vector<SqlRow>{{"5", "1"}, {"6", "0"}}));
}

TEST_F(Operate, Code21InsertsAnAbsentUpgradeRecordToo) {
    EXPECT_EQ(on_upgrade(21, "p", "a"), 0);
    EXPECT_EQ(on_upgrade(21, "p", "b"), 0);  // there: no statement for it
    EXPECT_EQ(upgrade_rows("pkg_name"), (std::vector<SqlRow>{{"a"}}));
}

TEST_F(Operate, ServerRowsOfOtherCodesAreInsertedEachTime) {
    for (int32_t code : {1, 2, 6}) {
        EXPECT_EQ(on_server(code, 5, 0), 0);
    }
    EXPECT_EQ(sql(main_db, "select count(*) from server_table"), (std::vector<SqlRow>{{"3"}}));
}

TEST_F(Operate, Code22DeletesAServerRow) {
    on_server(21, 5, 0);
    on_server(21, 6, 0);
    EXPECT_EQ(on_server(22, 5, 0), 0);
    EXPECT_EQ(on_server(22, 7, 0), 0);
    EXPECT_EQ(sql(main_db, "select sync_id from server_table"), (std::vector<SqlRow>{{"6"}}));
}

TEST_F(Operate, TheRequestsOwnCodeChoosesTheRowTestAndTheArgumentTheAction) {
    sql(main_db, "insert into package_info_table values('n', '1', NULL, 0, 0, 0)");
    request.table = CMPNT_PACKAGE_INFO_TABLE;
    strcpy(request.base.package_name, "n");
    request.base.package_state = 6;
    request.cmd = 0;  // tests the empty base_version as well
    EXPECT_EQ(cmpnt_operate_pkg_database(&request, 5), 0);
    EXPECT_EQ(sql(main_db, "select package_state from package_info_table"),
              (std::vector<SqlRow>{{"0"}}));
    request.cmd = 18;  // tests the name alone
    EXPECT_EQ(cmpnt_operate_pkg_database(&request, 5), 0);
    EXPECT_EQ(sql(main_db, "select package_state from package_info_table"),
              (std::vector<SqlRow>{{"6"}}));
}

TEST_F(Operate, OtherCodesDoNothing) {
    add_rows();
    const std::vector<SqlRow> before = upgrade_rows("*");
    for (int32_t code : {0, 26, -1, INT32_MAX, INT32_MIN}) {
        remove_tree(backup_db);
        EXPECT_EQ(on_upgrade(code, "p", "a"), 0);
        EXPECT_EQ(on_upgrade(code, "absent", "a"), 0);
        EXPECT_EQ(read_file(backup_db), read_file(main_db));  // but the copy is refreshed
    }
    EXPECT_EQ(upgrade_rows("*"), before);
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(Operate, OtherCodesStillNeedTheTable) {
    sql(main_db, "drop table pkg_upgrade_table");
    EXPECT_EQ(on_upgrade(0, "p", "a"), -1);
    EXPECT_TRUE(
        logged("CMPNT_ERROR", "cmpnt_operate_pkg_database", "pkg_name_is_exist_in_db fail.\n"));
}

TEST_F(Operate, ACodeWithoutAStatementForTheTableSucceeds) {
    request.table = CMPNT_AUTO_SYNC_TABLE;
    strcpy(request.record.patch_name, "p");
    sql(main_db, "insert into auto_sync_table(patch_name, pkg_state) values('p', 1)");
    request.record.pkg_state = 6;
    for (int32_t code : {3, 4, 5, 7, 8, 9, 10, 12, 14, 15, 16, 17, 20, 22, 23, 24, 25}) {
        EXPECT_EQ(operate(code), 0) << code;
    }
    EXPECT_EQ(sql(main_db, "select patch_name, pkg_state from auto_sync_table"),
              (std::vector<SqlRow>{{"p", "1"}}));
    for (int32_t table : {0, 5, -1}) {
        request.table = table;
        for (int32_t code = 1; code <= 25; code++) {
            EXPECT_EQ(operate(code), code == 12 ? -1 : 0) << code;
        }
    }
}

// The existence test is the first statement of a call, the action's the second.
TEST_F(Operate, EachActionReportsItsFailure) {
    request.db_type = main_without_backup;
    const std::string insert_failed = "insert pkg info table fail.\n";
    const std::string update_failed = "update pkg info table fail.\n";
    const std::string delete_failed = "delete_table_record_from_db fail.\n";
    const std::string test_failed = "pkg_name_is_exist_in_db fail.\n";
    const struct {
        int32_t code;
        bool exists;
        std::string message;
    } cases[] = {
        {1, false, insert_failed},
        {2, false, insert_failed},
        {2, true, update_failed},
        {3, true, "del pkg info table fail.\n"},
        {4, true, update_failed},
        {5, true, update_failed},
        {6, false, insert_failed},
        {6, true, update_failed},
        {7, true, update_failed},
        {8, true, update_failed},
        {9, true, update_failed},
        {10, true, update_failed},
        {11, true, test_failed},
        {11, false, test_failed},
        {12, true, update_failed},
        {13, true, delete_failed},
        {14, true, delete_failed},
        {15, true, update_failed},
        {15, false, update_failed},
        {16, true, update_failed},
        {17, true, update_failed},
        {18, true, test_failed},
        {19, false, test_failed},
        {20, true, update_failed},
        {20, false, update_failed},
        {21, true, "update server sync flag fail.\n"},
        {21, false, "insert server sync table fail.\n"},
        {22, true, delete_failed},
        {23, true, "update time fail.\n"},
        {24, true, "update last patch fail.\n"},
        {25, true, update_failed},
    };
    add_rows();
    for (const auto &one : cases) {
        SCOPED_TRACE(std::to_string(one.code) + (one.exists ? " present" : " absent"));
        forget_log();
        fault::reset();
        fault::fail("sqlite3_exec", 2, 0);
        EXPECT_EQ(one.exists ? on_upgrade(one.code, "p", "a", "/pa")
                             : on_upgrade(one.code, "absent", "absent", "/absent"),
                  -1);
        EXPECT_EQ(fault::calls("sqlite3_exec"), 2);
        EXPECT_TRUE(logged("CMPNT_ERROR", "operate_pkg_info_table", one.message));
        EXPECT_TRUE(
            logged("CMPNT_ERROR", "cmpnt_operate_pkg_database", "operate_pkg_info_table fail.\n"));
        EXPECT_EQ(trace_lines().back().message, "operate_pkg_info_table fail.\n");
        EXPECT_EQ(traced("error", "operate_pkg_info_table", one.message), 1);
    }
}

TEST_F(Operate, AnActionOnlyForThePresentDoesNothingForTheAbsent) {
    request.db_type = main_without_backup;
    add_rows();
    const std::vector<SqlRow> before = upgrade_rows("*");
    for (int32_t code : {3, 4, 5, 7, 8, 9, 10, 13, 14, 16, 17, 22, 23, 24, 25}) {
        fault::reset();
        EXPECT_EQ(on_upgrade(code, "absent", "absent", "/absent"), 0) << code;
        EXPECT_EQ(fault::calls("sqlite3_exec"), 1) << code;
    }
    EXPECT_EQ(upgrade_rows("*"), before);
}

TEST_F(Operate, RefusesNull) {
    EXPECT_EQ(cmpnt_operate_pkg_database(nullptr, 1), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_operate_pkg_database", "input param is null.\n"));
    EXPECT_FALSE(exists(backup_db));
}

TEST_F(Operate, FailsWithoutTheLockAndLeavesTheBackup) {
    remove_tree("/tmp/.cmpnt_db_lock");
    make_directories("/tmp/.cmpnt_db_lock");
    EXPECT_EQ(on_upgrade(1, "p", "a"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_operate_pkg_database", "open db flock fail.\n"));
    EXPECT_FALSE(exists(backup_db));
}

TEST_F(Operate, FailsWithoutTheFileAndLeavesTheBackup) {
    remove_tree("/var/lib");
    const int before = open_descriptors();
    EXPECT_EQ(on_upgrade(1, "p", "a"), -1);
    EXPECT_TRUE(
        logged("CMPNT_ERROR", "cmpnt_operate_pkg_database", "cmpnt_open_sqlite fail ret(-1)\n"));
    EXPECT_FALSE(exists(backup_db));
    EXPECT_EQ(open_descriptors(), before);
}

TEST_F(Operate, FailsWhenTheCloseFailsAndLeavesTheBackup) {
    fault::fail("sqlite3_close", 1, 0);
    EXPECT_EQ(on_upgrade(1, "p", "a"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_operate_pkg_database", "sqlite close fail ret(5).\n"));
    EXPECT_EQ(upgrade_rows("patch_name"), (std::vector<SqlRow>{{"p"}}));
    EXPECT_FALSE(exists(backup_db));
}

TEST_F(Operate, RefreshesTheBackupForTheUpgradeTableOfTheMainFileAlone) {
    make_directories("/tmp/opkg/server");
    for (int32_t db_type : {0, 1, 2, 3, 7, -1}) {
        for (int32_t table : {1, 2, 3, 4}) {
            cmpnt_create_pkg_table(table, db_type);
            if (db_type != CMPNT_DB_BACKUP) {
                write_file(backup_db, "old");
            }
            const std::string before = read_file(backup_db);
            request.db_type = db_type;
            request.table = table;
            EXPECT_EQ(operate(0), 0);
            if (db_type == 0 && table == 2) {
                EXPECT_EQ(read_file(backup_db), read_file(main_db));
            } else {
                EXPECT_EQ(read_file(backup_db), before) << db_type << " " << table;
            }
            if (db_type != CMPNT_DB_BACKUP) {
                remove_tree(backup_db);
            }
        }
    }
}

TEST_F(Operate, RefreshesTheBackupAfterAFailureAndATestToo) {
    EXPECT_EQ(on_upgrade(12, "absent", "a"), -1);
    EXPECT_EQ(read_file(backup_db), read_file(main_db));
    remove_tree(backup_db);
    EXPECT_EQ(on_upgrade(11, "absent", "a"), 0);
    EXPECT_EQ(read_file(backup_db), read_file(main_db));
    remove_tree(backup_db);
    sql(main_db, "drop table pkg_upgrade_table");
    EXPECT_EQ(on_upgrade(1, "p", "a"), -1);
    EXPECT_EQ(read_file(backup_db), read_file(main_db));
}

// The copy is of one moment: nobody else writes while it is made, and the file is closed.
TEST_F(Operate, CopiesUnderTheLockWithTheFileClosed) {
    add_rows();
    remove_tree("/data/cmpnt");
    write_file("/data/cmpnt", "in the way of the copy");
    static bool was_locked;
    static int closes;
    was_locked = false;
    fault::reset();
    platform.on_syslog = [] {
        platform.on_syslog = nullptr;
        closes = fault::calls("sqlite3_close");
        Child other([](Child &) {
            const int fd = open("/tmp/.cmpnt_db_lock", O_RDWR);
            struct flock lock = {};
            lock.l_type = F_WRLCK;
            return fd < 0 ? 2 : fcntl(fd, F_SETLK, &lock) == 0 ? 0 : 1;
        });
        was_locked = other.wait() == 1;
    };
    EXPECT_EQ(on_upgrade(write_test_row, "p", "a"), 0);
    EXPECT_TRUE(was_locked);
    EXPECT_EQ(closes, 1);
}

TEST_F(Operate, DoesNotCareForAFailedBackup) {
    remove_tree("/data/cmpnt");
    EXPECT_EQ(on_upgrade(1, "p", "a"), 0);
    EXPECT_EQ(traced("error", "cmpnt_backup_sqlite_db_to_data",
                     "cmpnt_popen_cmd_run fail, cmd(cp -rf), "
                     "buf(/var/lib/opkg/cmpnt_upgrade.db3 "
                     "/data/cmpnt/opkg/cmpnt_upgrade_backup.db3).\n"),
              1);
}

TEST_F(Operate, AnotherReaderOrWriterIsWaitedForByUpdates) {
    add_rows();
    Connection other(main_db);
    for (const char *begin : {"begin", "begin immediate"}) {
        fault::reset();
        fault::skip_sleeps();
        other.run(begin);
        other.run("select * from pkg_upgrade_table");  // and reads on
        EXPECT_EQ(on_upgrade(8, "p", "a"), -1) << begin;
        EXPECT_EQ(fault::calls("nanosleep"), 5) << begin;
        other.run("rollback");
    }
    EXPECT_EQ(on_upgrade(8, "p", "a"), 0);
}

TEST_F(Operate, AnotherWriterIsNotWaitedForByInsertsAndDeletes) {
    add_rows();
    Connection other(main_db);
    other.run("begin immediate");
    EXPECT_EQ(on_upgrade(13, "p", "a"), -1);
    EXPECT_EQ(on_upgrade(1, "new", "a"), -1);
    EXPECT_EQ(fault::calls("nanosleep"), 0);
}

TEST_F(Operate, AnExclusiveHolderIsNotWaitedFor) {
    add_rows();
    Connection other(main_db);
    other.run("begin exclusive");
    EXPECT_EQ(on_upgrade(8, "p", "a"), -1);
    EXPECT_TRUE(
        logged("CMPNT_ERROR", "pkg_name_is_exist_in_db", "sqlite error: database is locked\n"));
    EXPECT_TRUE(
        logged("CMPNT_ERROR", "cmpnt_operate_pkg_database", "pkg_name_is_exist_in_db fail.\n"));
    EXPECT_EQ(fault::calls("nanosleep"), 0);
}

TEST_F(Operate, HostileNamesAreStoredOrRefused) {
    request.db_type = main_without_backup;
    for (const char *name : {"", " ", "a\nb", "$(touch /tmp/pwned)", "`id`", "a;b", "%s%n", "\xff",
                             "--", "\"", "a\\"}) {
        EXPECT_EQ(on_upgrade(1, name, name), 0) << name;
        EXPECT_EQ(on_upgrade(13, name, name), 0) << name;
        EXPECT_EQ(upgrade_rows("patch_name").size(), 0u) << name;
    }
    EXPECT_FALSE(exists("/tmp/pwned"));
    EXPECT_EQ(on_upgrade(1, "it's", "a"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "pkg_name_is_exist_in_db",
                       "sqlite error: near \"s\": syntax error\n"));
}

TEST_F(Operate, LeavesNoDescriptorOpen) {
    const int before = open_descriptors();
    for (int32_t code = 0; code <= 26; code++) {
        on_upgrade(code, "p", "a");
        on_upgrade(code, "it's", "a");
    }
    EXPECT_EQ(open_descriptors(), before);
}
