#include <string.h>

#include "db/write.hh"
#include "tests/support/device_test.hh"
#include "tests/support/main_tables.hh"
#include "tests/support/sqlite.hh"

namespace {

constexpr char upgrade_columns[] =
    "patch_name, pkg_name, cur_pkg_path, cur_version, last_version, pkg_state, card_id, "
    "cur_flag, op_flag, description, patch_ver, patch_id, effective_time, last_patch, "
    "patch_size, patch_type, patch_order, hotpatch_file, hotpatch_target, "
    "hotpatch_target_path, hotpatch_target_pkg_path, hotpatch_target_md5, "
    "hotpatch_target_strip_md5";

std::string all_columns(const char *table) { return std::string("select * from ") + table; }

}  // namespace

class Insert : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        create_main_tables();
    }

    // Inserts the request into this table, and returns the statement.
    std::string insert(int32_t table, int32_t mode = 1) {
        Connection connection(main_db);
        request.table = table;
        EXPECT_EQ(insert_pkg_info_table(connection.db(), &request, mode), 0);
        const std::vector<std::string> statements = connection.statements();
        return statements.empty() ? "" : statements[0];
    }

    cmpnt_db_request request = {};
};

TEST_F(Insert, WritesABasePackageWithoutItsCurrentVersion) {
    set_base_db_value(&request.base, "name", "1.0", "never written", 6, 1, -3);
    EXPECT_EQ(insert(1),
              "insert into package_info_table(package_name, base_version, package_state, "
              "package_is_new, upgrade_count)                 values('name', '1.0', 6, 1, -3)");
    EXPECT_EQ(sql(main_db, all_columns("package_info_table")),
              (std::vector<SqlRow>{{"name", "1.0", "NULL", "6", "1", "-3"}}));
}

TEST_F(Insert, WritesAllColumnsOfAnUpgradeRecordInTheirOrder) {
    request = whole_request();
    const SqlRow row = {"n", "k", "/p", "2", "1",  "4",  "-1", "6",  "7",  "d",  "v", "i",
                        "t", "l", "8",  "9", "10", "hf", "ht", "hp", "hk", "hm", "hs"};
    for (const auto &[table, name] :
         {std::pair(2, std::string("pkg_upgrade_table")), {4, "auto_sync_table"}}) {
        EXPECT_EQ(insert(table),
                  "insert into " + name + "(" + upgrade_columns +
                      ")         values('n', 'k', '/p', '2', '1', 4, -1, 6, 7, 'd', 'v', 'i', "
                      "'t', 'l', 8, 9, 10, 'hf', 'ht', 'hp', 'hk', 'hm', 'hs')");
        EXPECT_EQ(sql(main_db, all_columns(name.c_str())), (std::vector<SqlRow>{row}));
    }
}

TEST_F(Insert, WritesAServerRow) {
    request.sync_id = -5;
    request.sync_flag = 1;
    EXPECT_EQ(insert(3), "insert into server_table(sync_id, sync_flag) values(-5, 1)");
    EXPECT_EQ(sql(main_db, all_columns("server_table")), (std::vector<SqlRow>{{"-5", "1"}}));
}

TEST_F(Insert, BothModesAreAlikeAndOthersInsertNothing) {
    EXPECT_EQ(insert(3, 1), insert(3, 2));
    for (int32_t mode : {0, 3, -1}) {
        for (int32_t table : {1, 2, 3, 4}) {
            EXPECT_EQ(insert(table, mode), "");
        }
    }
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(Insert, AnUnknownTableInsertsNothing) {
    for (int32_t table : {0, 5, -1}) {
        EXPECT_EQ(insert(table), "");
    }
}

TEST_F(Insert, ReportsAnErrorOnce) {
    sql(main_db, "drop table server_table");
    Connection connection(main_db);
    request.table = 3;
    EXPECT_EQ(insert_pkg_info_table(connection.db(), &request, 1), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "insert_pkg_info_table",
                       "sqlite error: no such table: server_table\n"));
    EXPECT_EQ(trace_lines().size(), 1u);
}

TEST_F(Insert, IsNotTriedAgainOnALockedFile) {
    Connection connection(main_db), other(main_db);
    other.run("begin immediate");
    request.table = 3;
    EXPECT_EQ(insert_pkg_info_table(connection.db(), &request, 1), -1);
    EXPECT_TRUE(
        logged("CMPNT_ERROR", "insert_pkg_info_table", "sqlite error: database is locked\n"));
    EXPECT_EQ(fault::calls("sqlite3_exec"), 1 + 4);  // and the creates
}

TEST_F(Insert, AQuoteBreaksItsStatement) {
    Connection connection(main_db);
    set_base_db_value(&request.base, "it's", nullptr, nullptr, 0, 0, 0);
    request.table = 1;
    EXPECT_EQ(insert_pkg_info_table(connection.db(), &request, 1), -1);
    EXPECT_TRUE(
        logged("CMPNT_ERROR", "insert_pkg_info_table", "sqlite error: near \"s\": syntax error\n"));
}

// An empty record of pkg_upgrade_table makes a statement of 458 bytes, and 3583 fit.
TEST_F(Insert, AStatementThatJustFitsWorksAndALongerOneIsRefused) {
    cmpnt_pkg_record &row = request.record;
    memset(row.description, 'd', 255);
    memset(row.hotpatch_file, 'f', 259);
    memset(row.hotpatch_target, 't', 239);
    memset(row.hotpatch_target_path, 'p', 779);
    memset(row.hotpatch_target_pkg_path, 'k', 779);
    memset(row.hotpatch_target_md5, 'm', 191);
    memset(row.hotpatch_target_strip_md5, 's', 191);
    memset(row.cur_pkg_path, 'c', 259);
    memset(row.patch_name, 'n', 79);
    memset(row.pkg_name, 'k', 79);
    memset(row.cur_version, 'v', 15);
    EXPECT_EQ(insert(2).size(), 3583u);
    EXPECT_EQ(sql(main_db, "select length(hotpatch_target_strip_md5) from pkg_upgrade_table"),
              (std::vector<SqlRow>{{"191"}}));

    strcat(row.cur_version, "v");
    Connection connection(main_db);
    EXPECT_EQ(insert_pkg_info_table(connection.db(), &request, 1), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "insert_pkg_info_table", "sqlite error: incomplete input\n"));
    EXPECT_EQ(sql(main_db, "select count(*) from pkg_upgrade_table"), (std::vector<SqlRow>{{"1"}}));
}

TEST_F(Insert, NullLeavesTheStatementEmpty) {
    char statement[statement_size] = "";
    cmpnt_set_insert_table_value(statement, nullptr, &request.record);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_set_insert_table_value", "param is null.\n"));
    forget_log();
    cmpnt_set_insert_table_value(statement, "pkg_upgrade_table", nullptr);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_set_insert_table_value", "param is null.\n"));
    EXPECT_STREQ(statement, "");
}
