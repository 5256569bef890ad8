#include "db/query.hh"

#include <string.h>

#include "tests/support/device_test.hh"
#include "tests/support/sqlite.hh"

namespace {

cmpnt_db_request request_for(int32_t table, int32_t cmd = 0, int32_t db_type = CMPNT_DB_MAIN) {
    cmpnt_db_request request = {};
    request.table = table;
    request.cmd = cmd;
    request.db_type = db_type;
    return request;
}

}  // namespace

class QueryTest : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        make_directories("/var/lib/opkg");
    }

    void make_table(int32_t table, int32_t db_type = CMPNT_DB_MAIN) {
        ASSERT_EQ(cmpnt_create_pkg_table(table, db_type), 0);
        forget_log();
        fault::reset();
    }
};

TEST_F(QueryTest, ReadsTheTableOfTheFile) {
    make_table(CMPNT_PACKAGE_INFO_TABLE, CMPNT_DB_AUTO_SYNC);
    sql(auto_sync_db, "insert into package_info_table values('busybox', '1.0', '1.1', 4, 1, 2)");
    cmpnt_db_request request =
        request_for(CMPNT_PACKAGE_INFO_TABLE, base_query_package, CMPNT_DB_AUTO_SYNC);
    strcpy(request.base.package_name, "busybox");
    EXPECT_EQ(cmpnt_get_pkg_info_database(&request), 0);
    EXPECT_STREQ(request.base.base_version, "1.0");
    EXPECT_STREQ(request.base.current_version, "1.1");
    EXPECT_EQ(request.base.package_state, 4);
    EXPECT_EQ(request.base.package_is_new, 1);
    EXPECT_EQ(request.base.upgrade_count, 2);
    EXPECT_TRUE(trace_messages().empty());
    EXPECT_FALSE(exists(main_db));
}

TEST_F(QueryTest, RefusesNull) {
    EXPECT_EQ(cmpnt_get_pkg_info_database(nullptr), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_get_pkg_info_database", "input param is null.\n"));
    cmpnt_db_request request = request_for(CMPNT_PKG_UPGRADE_TABLE);
    EXPECT_EQ(read_pkg_info_table(nullptr, &request), -1);
    Connection connection(":memory:");
    EXPECT_EQ(read_pkg_info_table(connection.db(), nullptr), -1);
}

TEST_F(QueryTest, FailsWithoutTheLock) {
    make_directories("/tmp/.cmpnt_db_lock");
    cmpnt_db_request request = request_for(CMPNT_PKG_UPGRADE_TABLE);
    EXPECT_EQ(cmpnt_get_pkg_info_database(&request), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_get_pkg_info_database", "open db flock fail.\n"));
    EXPECT_EQ(fault::calls("sqlite3_open"), 0);
}

TEST_F(QueryTest, FailsWhereTheFileCannotBeOpened) {
    cmpnt_db_request request = request_for(CMPNT_SERVER_TABLE, 0, CMPNT_DB_SERVER);
    EXPECT_EQ(cmpnt_get_pkg_info_database(&request), -1);
    EXPECT_TRUE(
        logged("CMPNT_ERROR", "cmpnt_get_pkg_info_database", "cmpnt_open_sqlite fail ret(-1)\n"));
    EXPECT_EQ(fault::calls("sqlite3_exec"), 0);
}

TEST_F(QueryTest, FailsForAMissingTable) {
    cmpnt_db_request request = request_for(CMPNT_PKG_UPGRADE_TABLE);
    EXPECT_EQ(cmpnt_get_pkg_info_database(&request), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "read_pkg_info_table",
                       "sqlite exec error: no such table: pkg_upgrade_table, sql_cmd(select *from "
                       "pkg_upgrade_table)\n"));
    EXPECT_TRUE(logged("CMPNT_TRACE", "cmpnt_get_pkg_info_database", "read pkg info table fail\n"));
    EXPECT_EQ(size_of(main_db), 0);  // opened, and so made
    EXPECT_EQ(fault::calls("sqlite3_close"), 1);
}

TEST_F(QueryTest, SaysSoWhenSqliteHasNoMessage) {
    make_table(CMPNT_SERVER_TABLE);
    fault::fail("sqlite3_exec", 1, 0);
    cmpnt_db_request request = request_for(CMPNT_SERVER_TABLE);
    EXPECT_EQ(cmpnt_get_pkg_info_database(&request), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "read_pkg_info_table",
                       "sqlite exec error: (null), sql_cmd(select *from server_table)\n"));
}

TEST_F(QueryTest, FailsWhenTheCloseFails) {
    make_table(CMPNT_SERVER_TABLE);
    fault::fail("sqlite3_close", 1, 0);
    cmpnt_db_request request = request_for(CMPNT_SERVER_TABLE);
    EXPECT_EQ(cmpnt_get_pkg_info_database(&request), -1);
    EXPECT_EQ(trace_messages(),
              (std::vector<std::string>{
                  "error cmpnt_get_pkg_info_database: sqlite close fail ret (5).\n"}));
    EXPECT_TRUE(
        logged("CMPNT_ERROR", "cmpnt_get_pkg_info_database", "sqlite close fail ret (5).\n"));
    EXPECT_EQ(fault::calls("sqlite3_close"), 1);
}

TEST_F(QueryTest, IsNotTriedAgainOnALockedFile) {
    make_table(CMPNT_SERVER_TABLE);
    Connection other(main_db);
    other.run("begin exclusive");
    cmpnt_db_request request = request_for(CMPNT_SERVER_TABLE);
    EXPECT_EQ(cmpnt_get_pkg_info_database(&request), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "read_pkg_info_table",
                       "sqlite exec error: database is locked, sql_cmd(select *from "
                       "server_table)\n"));
    EXPECT_EQ(fault::calls("sqlite3_exec"), 1);
}

TEST_F(QueryTest, SelectsTheThreeTablesThatAreAskedFor) {
    make_table(CMPNT_PACKAGE_INFO_TABLE);
    make_table(CMPNT_PKG_UPGRADE_TABLE);
    make_table(CMPNT_SERVER_TABLE);
    Connection connection(main_db);
    for (int32_t table : {1, 2, 3}) {
        cmpnt_db_request request = request_for(table);
        EXPECT_EQ(read_pkg_info_table(connection.db(), &request), 0);
    }
    EXPECT_EQ(connection.statements(), (std::vector<std::string>{"select *from package_info_table",
                                                                 "select *from pkg_upgrade_table",
                                                                 "select *from server_table"}));
}

TEST_F(QueryTest, ReadsNothingOfTheAutoSyncTableNorOfATableThatIsNone) {
    make_table(CMPNT_AUTO_SYNC_TABLE);
    sql(main_db, "insert into auto_sync_table(patch_name) values('SMU-1')");
    Connection connection(main_db);
    for (int32_t table : {4, 0, 5, -1, INT32_MAX, INT32_MIN}) {
        for (int32_t cmd : {0, 1, 3, 6, 13}) {
            cmpnt_db_request request = request_for(table, cmd);
            strcpy(request.record.patch_name, "SMU-1");
            const cmpnt_db_request before = request;
            EXPECT_EQ(read_pkg_info_table(connection.db(), &request), 0);
            EXPECT_EQ(memcmp(&request, &before, sizeof(request)), 0) << table << " " << cmd;
            EXPECT_EQ(cmpnt_get_pkg_info_database(&request), 0);
            EXPECT_EQ(memcmp(&request, &before, sizeof(request)), 0) << table << " " << cmd;
        }
    }
    EXPECT_TRUE(connection.statements().empty());
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(QueryTest, ReleasesTheLockAndTheFileInEveryOutcome) {
    const int before = open_descriptors();
    cmpnt_db_request missing_table = request_for(CMPNT_PKG_UPGRADE_TABLE);
    EXPECT_EQ(cmpnt_get_pkg_info_database(&missing_table), -1);
    cmpnt_db_request missing_file = request_for(CMPNT_SERVER_TABLE, 0, CMPNT_DB_SERVER);
    EXPECT_EQ(cmpnt_get_pkg_info_database(&missing_file), -1);
    make_table(CMPNT_PKG_UPGRADE_TABLE);
    EXPECT_EQ(cmpnt_get_pkg_info_database(&missing_table), 0);
    EXPECT_EQ(open_descriptors(), before);
}

// What a row that is none would be: SQLite hands it over when a connection asks for it.
TEST_F(QueryTest, StopsAtANullRow) {
    make_table(CMPNT_PKG_UPGRADE_TABLE);
    Connection connection(main_db);
    connection.run("pragma empty_result_callbacks = 1");
    cmpnt_db_request request = request_for(CMPNT_PKG_UPGRADE_TABLE, query_active);
    EXPECT_EQ(read_pkg_info_table(connection.db(), &request), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "read_pkg_info_table",
                       "sqlite exec error: query aborted, sql_cmd(select *from "
                       "pkg_upgrade_table)\n"));
    EXPECT_EQ(request.exist, 0);
}
