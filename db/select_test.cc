#include "db/select.hh"

#include "tests/support/device_test.hh"
#include "tests/support/main_tables.hh"
#include "tests/support/sqlite.hh"
#include "tests/support/upgrade_records.hh"

namespace {

constexpr int32_t known_modes[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 11};
constexpr int32_t modes_that_are_none[] = {10, 12, 13, -1, INT32_MAX, INT32_MIN};

}  // namespace

class SelectTest : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        create_main_tables();
    }

    // In the upgrade table: one row that each mode takes.
    void add_row() {
        sql(main_db,
            "insert into pkg_upgrade_table(patch_name, pkg_name, cur_version, pkg_state, card_id, "
            "patch_type) values('SMU-1.bin', 'a', '1.0', 4, 1, 1)");
        write_file("/data/cmpnt/opkg/download/SMU-1.bin.single/a.deb", "x");
    }
};

TEST_F(SelectTest, ReadsTheWholeTable) {
    Connection connection(main_db);
    for (int32_t table : {1, 2, 3, 4}) {
        for (int32_t mode : known_modes) {
            EXPECT_EQ(select_pkg_info_table(connection.db(), table, mode, 0), 0);
        }
        const std::vector<std::string> statements = connection.statements();
        EXPECT_EQ(statements.size(), std::size(known_modes));
        for (const std::string &statement : statements) {
            EXPECT_EQ(statement, table == 1   ? "select *from package_info_table"
                                 : table == 2 ? "select *from pkg_upgrade_table"
                                 : table == 3 ? "select *from server_table"
                                              : "select *from auto_sync_table");
        }
    }
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(SelectTest, ReadsNothingForATableThatIsNone) {
    Connection connection(main_db);
    for (int32_t table : {0, 5, -1, INT32_MAX, INT32_MIN}) {
        for (int32_t mode : known_modes) {
            EXPECT_EQ(select_pkg_info_table(connection.db(), table, mode, 0), 0);
        }
    }
    EXPECT_TRUE(connection.statements().empty());
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(SelectTest, DoesNothingForAModeThatIsNone) {
    add_row();
    Connection connection(main_db);
    for (int32_t mode : modes_that_are_none) {
        EXPECT_EQ(select_pkg_info_table(connection.db(), CMPNT_PKG_UPGRADE_TABLE, mode, 0), 0);
    }
    EXPECT_TRUE(connection.statements().empty());
    EXPECT_TRUE(records_of(cmpnt_upgrade_list).empty());
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(SelectTest, RefusesANullHandleQuietly) {
    for (int32_t mode : {0, 4, 7, 10}) {
        EXPECT_EQ(select_pkg_info_table(nullptr, CMPNT_PKG_UPGRADE_TABLE, mode, 0), -1);
    }
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(SelectTest, FailsForAMissingTable) {
    sql(main_db, "drop table auto_sync_table");
    Connection connection(main_db);
    for (int32_t mode : known_modes) {
        forget_log();
        EXPECT_EQ(select_pkg_info_table(connection.db(), CMPNT_AUTO_SYNC_TABLE, mode, 0), -1);
        EXPECT_TRUE(logged("CMPNT_ERROR", "select_pkg_info_table",
                           "sqlite error: no such table: auto_sync_table\n"));
    }
    EXPECT_EQ(platform.cli, "");
}

TEST_F(SelectTest, ShowsWithTheHeaderOnceASelect) {
    sql(main_db, "insert into server_table values(1, 0)");
    sql(main_db, "insert into server_table values(2, 1)");
    const std::string header = "sync_id             sync_flag           \n";
    const std::string rows =
        "1                   Init                \n"
        "2                   Finish              \n";
    Connection connection(main_db);
    for (int i = 0; i < 2; i++) {
        platform.cli.clear();
        EXPECT_EQ(
            select_pkg_info_table(connection.db(), CMPNT_SERVER_TABLE, CMPNT_ROWS_SHOW_ALL, 0), 0);
        EXPECT_EQ(platform.cli, header + rows);
    }
}

TEST_F(SelectTest, ShowsTheStateThatTheModeNames) {
    for (const char *values : {"('SMU-1', 4)", "('SMU-2', 6)", "('SMU-3', 2)"}) {
        sql(main_db,
            "insert into pkg_upgrade_table(patch_name, pkg_state) values" + std::string(values));
    }
    Connection connection(main_db);
    select_pkg_info_table(connection.db(), CMPNT_PKG_UPGRADE_TABLE, CMPNT_ROWS_SHOW_ACTIVE, 1);
    EXPECT_NE(platform.cli.find("SMU-1"), std::string::npos);
    EXPECT_EQ(platform.cli.find("SMU-2"), std::string::npos);
    platform.cli.clear();
    select_pkg_info_table(connection.db(), CMPNT_PKG_UPGRADE_TABLE, CMPNT_ROWS_SHOW_RUNNING, 1);
    EXPECT_EQ(platform.cli.find("SMU-1"), std::string::npos);
    EXPECT_NE(platform.cli.find("SMU-2"), std::string::npos);
    EXPECT_EQ(platform.cli.find("SMU-3"), std::string::npos);
}

TEST_F(SelectTest, AddsToTheListThatTheModeNames) {
    add_row();
    Connection connection(main_db);
    for (int32_t mode : known_modes) {
        recycle_upgrade_list(CMPNT_UPGRADE_LIST);
        recycle_upgrade_list(CMPNT_HP_LIST);
        EXPECT_EQ(select_pkg_info_table(connection.db(), CMPNT_PKG_UPGRADE_TABLE, mode, 0), 0);
        const bool upgrade = mode == 3 || mode == 4 || (mode >= 6 && mode <= 8);
        EXPECT_EQ(records_of(cmpnt_upgrade_list).size(), upgrade ? 1u : 0u) << mode;
        EXPECT_EQ(records_of(cmpnt_hp_list).size(), mode == 11 ? 1u : 0u) << mode;
        EXPECT_EQ(records_of(auto_sync_list).size(), mode >= 9 ? 1u : 0u) << mode;  // it stays
    }
}

TEST_F(SelectTest, LoadsTheAutoSyncTableAsWell) {
    sql(main_db, "insert into auto_sync_table(patch_name, pkg_name) values('SMU-1', 'a')");
    Connection connection(main_db);
    EXPECT_EQ(select_pkg_info_table(connection.db(), CMPNT_AUTO_SYNC_TABLE,
                                    CMPNT_ROWS_TO_UPGRADE_LIST, 0),
              0);
    EXPECT_EQ(records_of(cmpnt_upgrade_list), (std::vector<std::string>{"SMU-1 a "}));
}

TEST_F(SelectTest, FormatsTheStatement) {
    char sql_text[select_size];
    format_select(sql_text, CMPNT_PKG_UPGRADE_TABLE);
    EXPECT_STREQ(sql_text, "select *from pkg_upgrade_table");
    format_select(sql_text, 5);
    EXPECT_STREQ(sql_text, "");
}
