#include "tests/support/device_test.hh"
#include "tests/support/sqlite.hh"

namespace {

using Rows = std::vector<SqlRow>;

Rows patches(const std::string &path, const std::string &table = "pkg_upgrade_table") {
    return sql(path, "select patch_name, pkg_name from " + table);
}

}  // namespace

class RecordDelete : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        make_directories("/var/lib/opkg");
        make_directories("/data/cmpnt/opkg");
    }

    // Two packages of "smu" and one of "other".
    void create_upgrades(int32_t db_type, const std::string &path,
                         int32_t table = CMPNT_PKG_UPGRADE_TABLE,
                         const std::string &name = "pkg_upgrade_table") {
        ASSERT_EQ(cmpnt_create_pkg_table(table, db_type), 0);
        sql(path, "insert into " + name +
                      "(patch_name, pkg_name) values('smu', 'a'), "
                      "('other', 'smu'), ('smu', 'b')");
    }

    void create_base_packages(const std::vector<std::pair<std::string, std::string>> &packages) {
        ASSERT_EQ(cmpnt_create_pkg_table(CMPNT_PACKAGE_INFO_TABLE, CMPNT_DB_MAIN), 0);
        for (const auto &package : packages) {
            sql(main_db, "insert into package_info_table(package_name, base_version) values('" +
                             package.first + "', '" + package.second + "')");
        }
    }

    Rows base_packages() {
        return sql(main_db, "select package_name, base_version from package_info_table");
    }
};

TEST_F(RecordDelete, RemovesEveryRecordOfThePatch) {
    create_upgrades(CMPNT_DB_MAIN, main_db);
    EXPECT_EQ(cmpnt_delete_record_from_db("smu", CMPNT_DB_MAIN), 0);
    EXPECT_EQ(patches(main_db), (Rows{{"other", "smu"}}));
    EXPECT_EQ(patches(backup_db), (Rows{{"other", "smu"}}));
    EXPECT_TRUE(
        logged("CMPNT_MAJOR", "cmpnt_delete_record_from_db", "cmpnt_delete_record_from_db ok.\n"));
}

TEST_F(RecordDelete, WorksOnTheDatabaseThatIsNamed) {
    create_upgrades(CMPNT_DB_MAIN, main_db);
    create_upgrades(CMPNT_DB_AUTO_SYNC, auto_sync_db);
    EXPECT_EQ(cmpnt_delete_record_from_db("smu", CMPNT_DB_AUTO_SYNC), 0);
    EXPECT_EQ(patches(main_db).size(), 3u);
    EXPECT_EQ(patches(auto_sync_db), (Rows{{"other", "smu"}}));
    EXPECT_FALSE(exists(backup_db));
}

TEST_F(RecordDelete, OfAnAbsentPatchIsOk) {
    create_upgrades(CMPNT_DB_MAIN, main_db);
    EXPECT_EQ(cmpnt_delete_record_from_db("absent", CMPNT_DB_MAIN), 0);
    EXPECT_TRUE(
        logged("CMPNT_MAJOR", "cmpnt_delete_record_from_db", "cmpnt_delete_record_from_db ok.\n"));
    EXPECT_EQ(patches(main_db).size(), 3u);
}

TEST_F(RecordDelete, FailsWithoutATable) {
    EXPECT_EQ(cmpnt_delete_record_from_db("smu", CMPNT_DB_MAIN), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_delete_record_from_db",
                       "operate pkg database fail, cmd(13).\n"));
    EXPECT_EQ(traced("major", "cmpnt_delete_record_from_db", "cmpnt_delete_record_from_db ok.\n"),
              0);
}

TEST_F(RecordDelete, RefusesNull) {
    EXPECT_EQ(cmpnt_delete_record_from_db(nullptr, CMPNT_DB_MAIN), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_delete_record_from_db", "param is null.\n"));
    EXPECT_EQ(cmpnt_delete_db_record_by_patch(nullptr, CMPNT_DB_MAIN, 2), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_delete_db_record_by_patch", "param is null.\n"));
    EXPECT_FALSE(exists(main_db));
}

TEST_F(RecordDelete, ByPatchWorksOnTheTableThatIsNamed) {
    create_upgrades(CMPNT_DB_AUTO_SYNC, auto_sync_db);
    create_upgrades(CMPNT_DB_AUTO_SYNC, auto_sync_db, CMPNT_AUTO_SYNC_TABLE, "auto_sync_table");
    EXPECT_EQ(cmpnt_delete_db_record_by_patch("smu", CMPNT_DB_AUTO_SYNC, CMPNT_AUTO_SYNC_TABLE), 0);
    EXPECT_EQ(patches(auto_sync_db, "auto_sync_table"), (Rows{{"other", "smu"}}));
    EXPECT_EQ(patches(auto_sync_db).size(), 3u);
    EXPECT_EQ(cmpnt_delete_db_record_by_patch("smu", CMPNT_DB_AUTO_SYNC, CMPNT_PKG_UPGRADE_TABLE),
              0);
    EXPECT_EQ(patches(auto_sync_db), (Rows{{"other", "smu"}}));
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(RecordDelete, ByPatchOfABaseTableRemovesPackagesWithoutAName) {
    create_base_packages({{"smu", "1.0"}, {"", ""}, {"", "1.0"}, {"smu", ""}});
    EXPECT_EQ(cmpnt_delete_db_record_by_patch("smu", CMPNT_DB_MAIN, CMPNT_PACKAGE_INFO_TABLE), 0);
    EXPECT_EQ(base_packages(), (Rows{{"smu", "1.0"}, {"smu", ""}}));
}

TEST_F(RecordDelete, ByPatchOfABaseTableNeedsOneWithoutAVersionEither) {
    create_base_packages({{"smu", ""}, {"", "1.0"}});
    EXPECT_EQ(cmpnt_delete_db_record_by_patch("smu", CMPNT_DB_MAIN, CMPNT_PACKAGE_INFO_TABLE), 0);
    EXPECT_EQ(base_packages(), (Rows{{"smu", ""}, {"", "1.0"}}));
}

TEST_F(RecordDelete, ByPatchFailsWithoutATable) {
    EXPECT_EQ(cmpnt_delete_db_record_by_patch("smu", CMPNT_DB_MAIN, CMPNT_PKG_UPGRADE_TABLE), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_delete_db_record_by_patch",
                       "cmpnt_operate_pkg_database fail, cmd(13).\n"));
}
