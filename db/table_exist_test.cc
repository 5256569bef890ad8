#include "tests/support/device_test.hh"
#include "tests/support/sqlite.hh"

namespace {

std::string maybe_not(int32_t table) {
    return "the sqlite db table maybe not exist, table(" + std::to_string(table) + ").\n";
}

}  // namespace

class TableExist : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        make_directories("/var/lib/opkg");
    }
};

TEST_F(TableExist, TellsTheTablesThatAreThere) {
    for (int32_t table : {1, 2, 3}) {
        forget_log();
        EXPECT_EQ(cmpnt_table_is_exist(table, CMPNT_DB_AUTO_SYNC), 0);
        EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_table_is_exist", maybe_not(table)));
        ASSERT_EQ(cmpnt_create_pkg_table(table, CMPNT_DB_AUTO_SYNC), 0);
        forget_log();
        EXPECT_EQ(cmpnt_table_is_exist(table, CMPNT_DB_AUTO_SYNC), 1);
        EXPECT_TRUE(trace_messages().empty());
    }
}

TEST_F(TableExist, MakesAMissingFileEmpty) {
    EXPECT_EQ(cmpnt_table_is_exist(CMPNT_PACKAGE_INFO_TABLE, CMPNT_DB_MAIN), 0);
    EXPECT_EQ(size_of(main_db), 0);
}

TEST_F(TableExist, IsAlwaysSoForTablesThatAreNotAskedFor) {
    for (int32_t table : {4, 0, 5, 9, -1}) {
        EXPECT_EQ(cmpnt_table_is_exist(table, CMPNT_DB_MAIN), 1) << table;
    }
    EXPECT_TRUE(trace_messages().empty());
}

// The select must succeed whatever the rows hold.
TEST_F(TableExist, HoldsForATableWithRows) {
    ASSERT_EQ(cmpnt_create_pkg_table(CMPNT_PKG_UPGRADE_TABLE, CMPNT_DB_MAIN), 0);
    sql(main_db, "insert into pkg_upgrade_table(patch_name, pkg_name) values('p', 'a')");
    EXPECT_EQ(cmpnt_table_is_exist(CMPNT_PKG_UPGRADE_TABLE, CMPNT_DB_MAIN), 1);
}

TEST_F(TableExist, IsNotSoWhereTheFileCannotBeOpened) {
    EXPECT_EQ(cmpnt_table_is_exist(CMPNT_SERVER_TABLE, CMPNT_DB_SERVER), 0);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_table_is_exist", maybe_not(3)));
}

TEST_F(TableExist, TheMainFileNeedsBothItsTables) {
    ASSERT_EQ(cmpnt_create_pkg_table(CMPNT_PACKAGE_INFO_TABLE, CMPNT_DB_MAIN), 0);
    EXPECT_EQ(cmpnt_db_tabel_is_exist(), 0);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_table_is_exist", maybe_not(2)));
    ASSERT_EQ(cmpnt_create_pkg_table(CMPNT_PKG_UPGRADE_TABLE, CMPNT_DB_MAIN), 0);
    EXPECT_EQ(cmpnt_db_tabel_is_exist(), 1);
}

TEST_F(TableExist, TheSecondTableIsNotAskedForWithoutTheFirst) {
    ASSERT_EQ(cmpnt_create_pkg_table(CMPNT_PKG_UPGRADE_TABLE, CMPNT_DB_MAIN), 0);
    forget_log();
    EXPECT_EQ(cmpnt_db_tabel_is_exist(), 0);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_table_is_exist", maybe_not(1)));
    EXPECT_EQ(traced("error", "cmpnt_table_is_exist", maybe_not(2)), 0);
    EXPECT_EQ(fault::calls("sqlite3_open"), 2);  // the create's and the first question's
}

// Asking must be harmless where the main file is lost: the backup is all that is left.
TEST_F(TableExist, AskingLeavesTheBackupAlone) {
    write_file(backup_db, "the last good copy");
    EXPECT_EQ(cmpnt_db_tabel_is_exist(), 0);
    EXPECT_EQ(read_file(backup_db), "the last good copy");
}
