#include "tests/support/device_test.hh"
#include "tests/support/sqlite.hh"

namespace {

std::string upgrade_statement(const std::string &table) {
    return "CREATE TABLE " + table +
           "(patch_name text, pkg_name text, cur_pkg_path text, cur_version text, "
           "last_version text,        pkg_state integer, card_id integer, cur_flag integer, "
           "op_flag integer, description text, patch_ver text, patch_id text, "
           "effective_time text,         last_patch text, patch_size integer, "
           "patch_type integer, patch_order integer, hotpatch_file text, hotpatch_target text, "
           "hotpatch_target_path text, hotpatch_target_pkg_path text,         "
           "hotpatch_target_md5 text, hotpatch_target_strip_md5 text)";
}

std::vector<SqlRow> schema(const std::string &path) {
    return sql(path, "select sql from sqlite_master");
}

}  // namespace

class CreateTable : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        make_directories("/var/lib/opkg");
    }
};

TEST_F(CreateTable, MakesTheFileAndThePackageInfoTable) {
    // SQLite notes a statement behind "CREATE TABLE " as it was given.
    const std::string given =
        "create table package_info_table(package_name text, base_version text, "
        "current_version text, package_state integer,             package_is_new integer, "
        "upgrade_count integer)";
    EXPECT_EQ(cmpnt_create_pkg_table(CMPNT_PACKAGE_INFO_TABLE, CMPNT_DB_MAIN), 0);
    EXPECT_EQ(schema(main_db), (std::vector<SqlRow>{{"CREATE TABLE " + given.substr(13)}}));
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(CreateTable, MakesTheUpgradeTable) {
    EXPECT_EQ(cmpnt_create_pkg_table(CMPNT_PKG_UPGRADE_TABLE, CMPNT_DB_MAIN), 0);
    EXPECT_EQ(schema(main_db), (std::vector<SqlRow>{{upgrade_statement("pkg_upgrade_table")}}));
}

TEST_F(CreateTable, MakesTheServerTable) {
    make_directories("/tmp/opkg/server");
    const std::string given = "create table server_table(sync_id integer, sync_flag integer)";
    EXPECT_EQ(cmpnt_create_pkg_table(CMPNT_SERVER_TABLE, CMPNT_DB_SERVER), 0);
    EXPECT_EQ(schema(server_db), (std::vector<SqlRow>{{"CREATE TABLE " + given.substr(13)}}));
}

TEST_F(CreateTable, MakesTheAutoSyncTable) {
    EXPECT_EQ(cmpnt_create_pkg_table(CMPNT_AUTO_SYNC_TABLE, CMPNT_DB_AUTO_SYNC), 0);
    EXPECT_EQ(schema(auto_sync_db), (std::vector<SqlRow>{{upgrade_statement("auto_sync_table")}}));
}

TEST_F(CreateTable, FailsForATableThatIsThere) {
    ASSERT_EQ(cmpnt_create_pkg_table(CMPNT_PACKAGE_INFO_TABLE, CMPNT_DB_MAIN), 0);
    sql(main_db, "insert into package_info_table(package_name) values('kept')");
    EXPECT_EQ(cmpnt_create_pkg_table(CMPNT_PACKAGE_INFO_TABLE, CMPNT_DB_MAIN), -1);
    EXPECT_TRUE(logged("BEGIN_ERROR", "cmpnt_create_pkg_table",
                       "sqlite exec create tabale error: table package_info_table already "
                       "exists\n"));
    EXPECT_EQ(sql(main_db, "select package_name from package_info_table"),
              (std::vector<SqlRow>{{"kept"}}));
}

TEST_F(CreateTable, SucceedsForATableNumberThatIsNoneAndMakesNoTable) {
    for (int32_t table : {0, 5, -1, INT32_MAX, INT32_MIN}) {
        remove_tree(main_db);
        EXPECT_EQ(cmpnt_create_pkg_table(table, CMPNT_DB_MAIN), 0);
        EXPECT_TRUE(logged("BEGIN_ERROR", "cmpnt_create_pkg_table",
                           "the index(" + std::to_string(table) + ") is error\n"));
        EXPECT_EQ(size_of(main_db), 0);  // opened, and so made
    }
}

TEST_F(CreateTable, DoesNotTouchTheBackup) {
    make_directories("/data/cmpnt/opkg");
    ASSERT_EQ(cmpnt_create_pkg_table(CMPNT_PKG_UPGRADE_TABLE, CMPNT_DB_MAIN), 0);
    EXPECT_FALSE(exists(backup_db));
}

TEST_F(CreateTable, FailsWithoutTheLock) {
    make_directories("/tmp/.cmpnt_db_lock");
    EXPECT_EQ(cmpnt_create_pkg_table(CMPNT_PACKAGE_INFO_TABLE, CMPNT_DB_MAIN), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_create_pkg_table", "open db flock fail.\n"));
    EXPECT_FALSE(exists(main_db));
}

TEST_F(CreateTable, FailsWithoutTheFilesDirectory) {
    const int before = open_descriptors();
    EXPECT_EQ(cmpnt_create_pkg_table(CMPNT_SERVER_TABLE, CMPNT_DB_SERVER), -1);
    EXPECT_TRUE(
        logged("CMPNT_ERROR", "cmpnt_create_pkg_table", "cmpnt_open_sqlite fail ret(-1)\n"));
    EXPECT_EQ(open_descriptors(), before);
}

TEST_F(CreateTable, FailsQuietlyWhenTheCloseFails) {
    fault::fail("sqlite3_close", 1, 0);
    EXPECT_EQ(cmpnt_create_pkg_table(CMPNT_SERVER_TABLE, CMPNT_DB_MAIN), -1);
    EXPECT_EQ(fault::calls("sqlite3_close"), 1);
    EXPECT_TRUE(trace_messages().empty());
    EXPECT_EQ(schema(main_db).size(), 1u);
}

TEST_F(CreateTable, IsNotTriedAgainOnALockedFile) {
    Connection other(main_db);
    other.run("begin exclusive");
    EXPECT_EQ(cmpnt_create_pkg_table(CMPNT_SERVER_TABLE, CMPNT_DB_MAIN), -1);
    EXPECT_TRUE(logged("BEGIN_ERROR", "cmpnt_create_pkg_table",
                       "sqlite exec create tabale error: database is locked\n"));
    EXPECT_EQ(fault::calls("nanosleep"), 0);
}

TEST_F(CreateTable, LeavesNoDescriptorOpen) {
    const int before = open_descriptors();
    cmpnt_create_pkg_table(CMPNT_PACKAGE_INFO_TABLE, CMPNT_DB_MAIN);
    cmpnt_create_pkg_table(CMPNT_PACKAGE_INFO_TABLE, CMPNT_DB_MAIN);
    EXPECT_EQ(open_descriptors(), before);
}
