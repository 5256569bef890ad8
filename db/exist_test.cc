#include <string.h>

#include "db/write.hh"
#include "tests/support/device_test.hh"
#include "tests/support/main_tables.hh"
#include "tests/support/sqlite.hh"

class Exist : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        create_main_tables();
    }

    // The test's statement, and its answer.
    std::string ask(int32_t table, int32_t code) {
        Connection connection(main_db);
        request.table = table;
        request.cmd = code;
        exists = 7;
        EXPECT_EQ(pkg_name_is_exist_in_db(connection.db(), &request, &exists), 0);
        const std::vector<std::string> statements = connection.statements();
        return statements.empty() ? "" : statements[0];
    }

    cmpnt_db_request request = whole_request();
    int32_t exists = 7;
};

TEST_F(Exist, TableAndCodeChooseTheFieldsThatNameTheRow) {
    const std::string base = "select *from package_info_table where package_name = 'P'";
    const std::string upgrade = "select *from pkg_upgrade_table where ";
    for (int32_t code = -1; code <= 27; code++) {
        EXPECT_EQ(ask(1, code), code == 18 ? base : base + " and base_version = 'B'") << code;
        std::string key = "patch_name = 'n'";
        switch (code) {
            case 9:
            case 11:
                key = "pkg_name = 'k'";
                break;
            case 10:
                key = "pkg_name = 'k' and cur_version = '2'";
                break;
            case 6:
            case 14:
                key = "patch_name = 'n' and cur_pkg_path = '/p'";
                break;
            case 2:
            case 4:
            case 7:
            case 15:
            case 25:
                key = "patch_name = 'n' and pkg_name = 'k'";
                break;
        }
        EXPECT_EQ(ask(2, code), upgrade + key) << code;
        EXPECT_EQ(ask(3, code),
                  code == 21 || code == 22 ? "select *from server_table where sync_id = '-3'" : "")
            << code;
        EXPECT_EQ(ask(4, code), "select *from auto_sync_table where patch_name = 'n'") << code;
        EXPECT_EQ(ask(0, code), "") << code;
        EXPECT_EQ(ask(5, code), "") << code;
    }
}

TEST_F(Exist, IsOneForAnyNumberOfRows) {
    ask(2, 1);
    EXPECT_EQ(exists, 0);
    sql(main_db, "insert into pkg_upgrade_table(patch_name) values('n')");
    ask(2, 1);
    EXPECT_EQ(exists, 1);
    sql(main_db, "insert into pkg_upgrade_table(patch_name) values('n')");
    ask(2, 1);
    EXPECT_EQ(exists, 1);
    sql(main_db, "delete from pkg_upgrade_table");
    ask(2, 1);
    EXPECT_EQ(exists, 0);
}

TEST_F(Exist, FindsAServerRowThoughItsNumberIsQuoted) {
    sql(main_db, "insert into server_table values(-3, 0)");
    ask(3, 21);
    EXPECT_EQ(exists, 1);
    ask(3, 1);
    EXPECT_EQ(exists, 0);  // not asked for
}

TEST_F(Exist, ReportsAnErrorAndCountsAsAbsent) {
    sql(main_db, "drop table pkg_upgrade_table");
    Connection connection(main_db);
    request.table = 2;
    EXPECT_EQ(pkg_name_is_exist_in_db(connection.db(), &request, &exists), -1);
    EXPECT_EQ(exists, 0);
    EXPECT_TRUE(logged("CMPNT_ERROR", "pkg_name_is_exist_in_db",
                       "sqlite error: no such table: pkg_upgrade_table\n"));
}

TEST_F(Exist, TextsAreNotEscaped) {
    Connection connection(main_db);
    request.table = 2;
    sql(main_db, "insert into pkg_upgrade_table(patch_name) values('other')");
    strcpy(request.record.patch_name, "x' or '1' = '1");
    EXPECT_EQ(pkg_name_is_exist_in_db(connection.db(), &request, &exists), 0);
    EXPECT_EQ(exists, 1);
    strcpy(request.record.patch_name, "it's");
    EXPECT_EQ(pkg_name_is_exist_in_db(connection.db(), &request, &exists), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "pkg_name_is_exist_in_db",
                       "sqlite error: near \"s\": syntax error\n"));
}
