#include <stdlib.h>
#include <time.h>

#include "tests/support/device_test.hh"
#include "tests/support/sqlite.hh"

class EffectiveTime : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        setenv("TZ", "UTC", 1);
        tzset();
        platform.clock = 1709288102;
        make_directories("/var/lib/opkg");
        make_directories("/data/cmpnt/opkg");
    }

    void create_table() {
        ASSERT_EQ(cmpnt_create_pkg_table(CMPNT_PKG_UPGRADE_TABLE, CMPNT_DB_MAIN), 0);
        sql(main_db,
            "insert into pkg_upgrade_table(patch_name, pkg_name, effective_time, "
            "pkg_state) values('smu', 'a', 'before', 4), ('smu', 'b', NULL, 4), "
            "('other', 'a', 'before', 4)");
    }

    // In the order of the rows; nothing else changed with them.
    std::vector<std::string> times() {
        std::vector<std::string> texts;
        for (const SqlRow &row :
             sql(main_db, "select effective_time, pkg_state from pkg_upgrade_table")) {
            texts.push_back(row[0]);
            EXPECT_EQ(row[1], "4");
        }
        return texts;
    }
};

using Times = std::vector<std::string>;

TEST_F(EffectiveTime, OfAnActivationIsNow) {
    create_table();
    EXPECT_EQ(cmpnt_update_active_time("smu"), 0);
    EXPECT_EQ(times(), (Times{"2024-03-01 10:15:02", "2024-03-01 10:15:02", "before"}));
}

TEST_F(EffectiveTime, OfAnActivationIsEmptyWithoutAClock) {
    create_table();
    platform.clock = -1;
    EXPECT_EQ(cmpnt_update_active_time("smu"), 0);
    EXPECT_EQ(times(), (Times{"", "", "before"}));
}

TEST_F(EffectiveTime, OfADeactivationIsTheEmptyText) {
    create_table();
    EXPECT_EQ(cmpnt_update_deactive_time("smu"), 0);
    EXPECT_EQ(times(), (Times{"", "", "before"}));
}

TEST_F(EffectiveTime, OfAnAbsentPatchIsOk) {
    create_table();
    EXPECT_EQ(cmpnt_update_active_time("absent"), 0);
    EXPECT_EQ(cmpnt_update_deactive_time("absent"), 0);
    EXPECT_EQ(times(), (Times{"before", "NULL", "before"}));
    EXPECT_EQ(traced("trace", "cmpnt_update_time_by_patch", "cmpnt_update_time_by_patch ok\n"), 2);
}

TEST_F(EffectiveTime, FailsWithoutATable) {
    EXPECT_EQ(cmpnt_update_active_time("smu"), -1);
    EXPECT_EQ(cmpnt_update_deactive_time("smu"), -1);
    EXPECT_EQ(
        traced("error", "cmpnt_update_time_by_patch", "operate pkg database fail, cmd(23).\n"), 2);
}

TEST_F(EffectiveTime, RefusesNull) {
    EXPECT_EQ(cmpnt_update_active_time(nullptr), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_update_active_time", "param is null\n"));
    EXPECT_EQ(cmpnt_update_deactive_time(nullptr), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_update_deactive_time", "param is null\n"));
    EXPECT_FALSE(exists(main_db));
}
