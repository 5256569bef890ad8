#include "tests/support/device_test.hh"
#include "tests/support/sqlite.hh"

class UpdateTime : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        make_directories("/var/lib/opkg");
        make_directories("/data/cmpnt/opkg");
        cmpnt_create_pkg_table(CMPNT_PKG_UPGRADE_TABLE, CMPNT_DB_MAIN);
        sql(main_db,
            "insert into pkg_upgrade_table(patch_name, pkg_name, effective_time, cur_flag) "
            "values('p', 'a', 'old', 1), ('p', 'b', NULL, 1), ('q', 'a', 'old', 1)");
    }

    static std::vector<SqlRow> times() {
        return sql(main_db, "select effective_time from pkg_upgrade_table");
    }
};

TEST_F(UpdateTime, SetsTheTimeOfEveryRowOfThePatch) {
    EXPECT_EQ(cmpnt_update_time_by_patch("p", "2024-03-01 10:15:02"), 0);
    EXPECT_EQ(times(),
              (std::vector<SqlRow>{{"2024-03-01 10:15:02"}, {"2024-03-01 10:15:02"}, {"old"}}));
    EXPECT_EQ(sql(main_db, "select count(*) from pkg_upgrade_table where cur_flag = 1"),
              (std::vector<SqlRow>{{"3"}}));
    EXPECT_TRUE(
        logged("CMPNT_TRACE", "cmpnt_update_time_by_patch", "cmpnt_update_time_by_patch ok\n"));
    EXPECT_EQ(trace_lines().size(), 1u);
}

TEST_F(UpdateTime, EmptiesTheTimeForNone) {
    EXPECT_EQ(cmpnt_update_time_by_patch("p", nullptr), 0);
    EXPECT_EQ(times(), (std::vector<SqlRow>{{""}, {""}, {"old"}}));
}

TEST_F(UpdateTime, CutsALongTime) {
    EXPECT_EQ(cmpnt_update_time_by_patch("q", std::string(100, 't').c_str()), 0);
    EXPECT_EQ(times()[2], (SqlRow{std::string(31, 't')}));
}

TEST_F(UpdateTime, SucceedsForAnAbsentPatch) {
    EXPECT_EQ(cmpnt_update_time_by_patch("r", "now"), 0);
    EXPECT_EQ(traced("trace", "cmpnt_update_time_by_patch", "cmpnt_update_time_by_patch ok\n"), 1);
    EXPECT_EQ(times(), (std::vector<SqlRow>{{"old"}, {"NULL"}, {"old"}}));
}

TEST_F(UpdateTime, RefreshesTheBackup) {
    cmpnt_update_time_by_patch("p", "now");
    EXPECT_EQ(read_file(backup_db), read_file(main_db));
}

TEST_F(UpdateTime, RefusesANullPatch) {
    EXPECT_EQ(cmpnt_update_time_by_patch(nullptr, "now"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_update_time_by_patch", "param is null.\n"));
    EXPECT_EQ(trace_lines().size(), 1u);
}

TEST_F(UpdateTime, ReportsAFailedWrite) {
    EXPECT_EQ(cmpnt_update_time_by_patch("it's", "now"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_update_time_by_patch",
                       "operate pkg database fail, cmd(23).\n"));
    EXPECT_EQ(times(), (std::vector<SqlRow>{{"old"}, {"NULL"}, {"old"}}));
}
