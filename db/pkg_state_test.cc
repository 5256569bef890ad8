#include <string.h>

#include "tests/support/device_test.hh"
#include "tests/support/sqlite.hh"

class PkgState : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        make_directories("/var/lib/opkg");
        for (int32_t table : {1, 2, 3}) {
            ASSERT_EQ(cmpnt_create_pkg_table(table, CMPNT_DB_MAIN), 0);
        }
        memset(&request, 0x5A, sizeof(request));  // of an earlier question
    }

    // The request as a question of the table leaves it when no row answers.
    static cmpnt_db_request unanswered(int32_t table, int32_t cmd) {
        cmpnt_db_request expected = {};
        expected.table = table;
        expected.cmd = cmd;
        return expected;
    }

    cmpnt_db_request request;
};

TEST_F(PkgState, AsksTheMainFileByTheCode) {
    sql(main_db, "insert into pkg_upgrade_table(patch_name, pkg_state) values('SMU-1', 3)");
    EXPECT_EQ(cmpnt_get_pkg_state(&request, CMPNT_PKG_UPGRADE_TABLE, 10), 0);
    cmpnt_db_request expected = unanswered(CMPNT_PKG_UPGRADE_TABLE, 10);
    expected.record.pkg_state = 3;
    strcpy(expected.record.patch_name, "SMU-1");
    EXPECT_EQ(memcmp(&request, &expected, sizeof(expected)), 0);
    EXPECT_TRUE(logged("CMPNT_TRACE", "cmpnt_get_pkg_state", "cmpnt_get_pkg_state ok!\n"));
    EXPECT_EQ(trace_lines().size(), 1u);
}

TEST_F(PkgState, AsksTheBaseTableAsWell) {
    sql(main_db, "insert into package_info_table(package_name, package_state) values('a', 7)");
    EXPECT_EQ(cmpnt_get_pkg_state(&request, CMPNT_PACKAGE_INFO_TABLE, 1), 0);
    EXPECT_EQ(request.exist, 1);
    EXPECT_STREQ(request.base.package_name, "a");
}

TEST_F(PkgState, ClearsTheRequest) {
    for (int32_t table : {1, 2, 3, 4, 0, -1}) {
        memset(&request, 0x5A, sizeof(request));
        EXPECT_EQ(cmpnt_get_pkg_state(&request, table, 9), 0);
        const cmpnt_db_request expected = unanswered(table, 9);
        EXPECT_EQ(memcmp(&request, &expected, sizeof(expected)), 0) << table;
    }
}

TEST_F(PkgState, MatchesNamesThatAreEmptyAlone) {
    sql(main_db, "insert into pkg_upgrade_table(patch_name, pkg_name, card_id) values('', '', 1)");
    EXPECT_EQ(cmpnt_get_pkg_state(&request, CMPNT_PKG_UPGRADE_TABLE, 1), 0);
    EXPECT_EQ(request.record.card_id, 1);
    sql(main_db, "insert into pkg_upgrade_table(patch_name, pkg_name) values('SMU-1', 'a')");
    EXPECT_EQ(cmpnt_get_pkg_state(&request, CMPNT_PKG_UPGRADE_TABLE, 1), -1);
}

TEST_F(PkgState, FailsWithTheQuery) {
    sql(main_db, "drop table pkg_upgrade_table");
    EXPECT_EQ(cmpnt_get_pkg_state(&request, CMPNT_PKG_UPGRADE_TABLE, 10), -1);
    EXPECT_TRUE(
        logged("CMPNT_ERROR", "cmpnt_get_pkg_state", "cmpnt_get_pkg_info_database fail.\n"));
    EXPECT_EQ(traced("trace", "cmpnt_get_pkg_state", "cmpnt_get_pkg_state ok!\n"), 0);
}

TEST_F(PkgState, RefusesNull) {
    EXPECT_EQ(cmpnt_get_pkg_state(nullptr, CMPNT_PKG_UPGRADE_TABLE, 10), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_get_pkg_state", "param is null.\n"));
    EXPECT_EQ(fault::calls("sqlite3_open"), 3);  // those that made the tables
}
