#include "tests/support/device_test.hh"
#include "tests/support/sqlite.hh"

namespace {

using Rows = std::vector<SqlRow>;

const std::string function = "cmpnt_update_state_database";

Rows upgrade_states() {
    return sql(main_db, "select patch_name, pkg_name, pkg_state from pkg_upgrade_table");
}

Rows base_states() {
    return sql(main_db, "select package_name, package_state from package_info_table");
}

}  // namespace

class StateUpdate : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        make_directories("/var/lib/opkg");
        make_directories("/data/cmpnt/opkg");
    }

    void create_tables() {
        ASSERT_EQ(cmpnt_create_pkg_table(CMPNT_PACKAGE_INFO_TABLE, CMPNT_DB_MAIN), 0);
        ASSERT_EQ(cmpnt_create_pkg_table(CMPNT_PKG_UPGRADE_TABLE, CMPNT_DB_MAIN), 0);
        sql(main_db,
            "insert into pkg_upgrade_table(patch_name, pkg_name, pkg_state) values"
            "('smu', 'a', 2), ('smu', 'b', 4), ('other', 'a', 2)");
        sql(main_db,
            "insert into package_info_table(package_name, base_version, package_state) "
            "values('based', '1.0', 2), ('bare', '', 2), ('bare', '1.0', 2)");
    }
};

TEST_F(StateUpdate, SetsTheStateOfEveryPackageOfThePatch) {
    create_tables();
    EXPECT_EQ(cmpnt_update_state_database("smu", "a", CMPNT_STATE_RUNNING, 2), 0);
    EXPECT_EQ(upgrade_states(), (Rows{{"smu", "a", "6"}, {"smu", "b", "6"}, {"other", "a", "2"}}));
    EXPECT_EQ(base_states(), (Rows{{"based", "2"}, {"bare", "2"}, {"bare", "2"}}));
    EXPECT_TRUE(exists(backup_db));
}

TEST_F(StateUpdate, NeedsNoPackageForAPatch) {
    create_tables();
    EXPECT_EQ(cmpnt_update_state_database("other", nullptr, CMPNT_STATE_ACTIVE, 2), 0);
    EXPECT_EQ(upgrade_states(), (Rows{{"smu", "a", "2"}, {"smu", "b", "4"}, {"other", "a", "4"}}));
}

TEST_F(StateUpdate, CanStoreTheStateZero) {
    create_tables();
    EXPECT_EQ(cmpnt_update_state_database("other", "a", CMPNT_STATE_INIT, 2), 0);
    EXPECT_EQ(upgrade_states().back(), (SqlRow{"other", "a", "0"}));
}

TEST_F(StateUpdate, OfAPatchThatIsNotThereSucceedsAndChangesNothing) {
    create_tables();
    EXPECT_EQ(cmpnt_update_state_database("absent", "a", CMPNT_STATE_RUNNING, 2), 0);
    EXPECT_EQ(upgrade_states(), (Rows{{"smu", "a", "2"}, {"smu", "b", "4"}, {"other", "a", "2"}}));
}

TEST_F(StateUpdate, OfABasePackageWorksOnlyWithoutABaseVersion) {
    create_tables();
    EXPECT_EQ(cmpnt_update_state_database("ignored", "based", CMPNT_STATE_RUNNING, 1), 0);
    EXPECT_EQ(base_states(), (Rows{{"based", "2"}, {"bare", "2"}, {"bare", "2"}}));
    // Once a row without one is found, every row of the name is changed.
    EXPECT_EQ(cmpnt_update_state_database(nullptr, "bare", CMPNT_STATE_RUNNING, 1), 0);
    EXPECT_EQ(base_states(), (Rows{{"based", "2"}, {"bare", "6"}, {"bare", "6"}}));
    EXPECT_EQ(upgrade_states(), (Rows{{"smu", "a", "2"}, {"smu", "b", "4"}, {"other", "a", "2"}}));
    EXPECT_FALSE(exists(backup_db));
}

TEST_F(StateUpdate, OfAnotherTableChangesNothing) {
    create_tables();
    for (const int32_t table : {3, 0, 5, -1}) {
        EXPECT_EQ(cmpnt_update_state_database("smu", "bare", CMPNT_STATE_RUNNING, table), 0)
            << table;
    }
    // The main file has no auto_sync_table to look into.
    EXPECT_EQ(cmpnt_update_state_database("smu", "bare", CMPNT_STATE_RUNNING, 4), -1);
    EXPECT_EQ(upgrade_states(), (Rows{{"smu", "a", "2"}, {"smu", "b", "4"}, {"other", "a", "2"}}));
    EXPECT_EQ(base_states(), (Rows{{"based", "2"}, {"bare", "2"}, {"bare", "2"}}));
}

TEST_F(StateUpdate, FailsWithoutTables) {
    for (const int32_t table : {CMPNT_PACKAGE_INFO_TABLE, CMPNT_PKG_UPGRADE_TABLE}) {
        forget_log();
        EXPECT_EQ(cmpnt_update_state_database("smu", "a", CMPNT_STATE_RUNNING, table), -1);
        EXPECT_TRUE(logged("CMPNT_ERROR", function, "operate pkg database fail, cmd(5).\n"));
    }
}

TEST_F(StateUpdate, NeedsTheNameThatItsTableIsSearchedBy) {
    create_tables();
    struct {
        const char *patch_name, *name;
        int32_t table;
    } const cases[] = {{nullptr, nullptr, 1},
                       {nullptr, nullptr, 2},
                       {nullptr, nullptr, 3},
                       {"smu", nullptr, 1},
                       {nullptr, "a", 2}};
    for (const auto &test : cases) {
        forget_log();
        EXPECT_EQ(cmpnt_update_state_database(test.patch_name, test.name, 6, test.table), -1);
        EXPECT_EQ(trace_messages(),
                  (std::vector<std::string>{"error " + function + ": param is null.\n"}));
        EXPECT_TRUE(logged("CMPNT_ERROR", function, "param is null.\n"));
    }
    EXPECT_EQ(upgrade_states(), (Rows{{"smu", "a", "2"}, {"smu", "b", "4"}, {"other", "a", "2"}}));
}
