#include "tests/support/device_test.hh"
#include "tests/support/sqlite.hh"

namespace {

const std::string base_test = "cmpnt_pkg_name_exist_in_base_table";
const std::string upgrade_test = "cmpnt_pkg_name_exist_in_upgrade_table";

}  // namespace

class NameExist : public DeviceTest {
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
            "insert into package_info_table(package_name, base_version) "
            "values('base', '1.0')");
        sql(main_db, "insert into pkg_upgrade_table(patch_name, pkg_name) values('smu', 'pkg')");
    }
};

TEST_F(NameExist, InTheBaseTable) {
    create_tables();
    EXPECT_EQ(cmpnt_pkg_name_exist_in_base_table("base"), 1);
    for (const char *absent : {"pkg", "smu", "bas", "base2", "BASE", ""}) {
        EXPECT_EQ(cmpnt_pkg_name_exist_in_base_table(absent), 0) << absent;
    }
    EXPECT_FALSE(exists(backup_db));
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(NameExist, InTheUpgradeTableIsAboutPackagesAndNotPatches) {
    create_tables();
    EXPECT_EQ(cmpnt_pkg_name_exist_in_upgrade_table("pkg"), 1);
    for (const char *absent : {"smu", "base", "pk", "pkg2", "PKG", ""}) {
        EXPECT_EQ(cmpnt_pkg_name_exist_in_upgrade_table(absent), 0) << absent;
    }
}

TEST_F(NameExist, InTheUpgradeTableRefreshesTheBackup) {
    create_tables();
    EXPECT_EQ(cmpnt_pkg_name_exist_in_upgrade_table("pkg"), 1);
    EXPECT_EQ(read_file(backup_db), read_file(main_db));
    EXPECT_TRUE(exists(backup_db));
}

TEST_F(NameExist, FailsWithoutATableAndNamesOneCodeForBoth) {
    EXPECT_EQ(cmpnt_pkg_name_exist_in_base_table("base"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", base_test, "operate database fail, cmd(18).\n"));
    EXPECT_EQ(cmpnt_pkg_name_exist_in_upgrade_table("pkg"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", upgrade_test, "operate database fail, cmd(18).\n"));
}

TEST_F(NameExist, RefusesNull) {
    EXPECT_EQ(cmpnt_pkg_name_exist_in_base_table(nullptr), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", base_test, "input param is error.\n"));
    EXPECT_EQ(cmpnt_pkg_name_exist_in_upgrade_table(nullptr), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", upgrade_test, "input param is error.\n"));
    EXPECT_FALSE(exists(main_db));
}
