#include "db/write.hh"
#include "tests/support/device_test.hh"
#include "tests/support/main_tables.hh"
#include "tests/support/sqlite.hh"

class Delete : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        create_main_tables();
    }

    std::string statement() {
        const std::vector<std::string> statements = connection.statements();
        return statements.empty() ? "" : statements[0];
    }

    cmpnt_db_request request = whole_request();
    Connection connection{main_db};
};

TEST_F(Delete, EachFormHasItsStatementOnItsTablesAndNoneOnOthers) {
    const std::string base = "delete from package_info_table where package_name = 'P'";
    const std::string upgrade = "delete from pkg_upgrade_table where patch_name = 'n'";
    const std::string auto_sync = "delete from auto_sync_table where patch_name = 'n'";
    const struct {
        DeleteForm form;
        std::string statements[6];  // by table
    } cases[] = {
        {DeleteForm::name, {"", base, upgrade, "", auto_sync, ""}},
        {DeleteForm::patch_and_path, {"", "", upgrade + " and cur_pkg_path = '/p'", "", "", ""}},
        {DeleteForm::sync_id, {"", "", "", "delete from server_table where sync_id = -3", "", ""}},
    };
    for (const auto &one : cases) {
        for (request.table = 0; request.table < 6; request.table++) {
            EXPECT_EQ(delete_table_record_from_db(connection.db(), &request, one.form), 0);
            EXPECT_EQ(statement(), one.statements[request.table]) << request.table;
        }
    }
    const std::string by_name[6] = {"", base, upgrade, "", "", ""};
    for (request.table = 0; request.table < 6; request.table++) {
        EXPECT_EQ(del_pkg_info_table(connection.db(), &request), 0);
        EXPECT_EQ(statement(), by_name[request.table]) << request.table;
    }
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(Delete, TakesTheRowsThatItNamesAlone) {
    sql(main_db,
        "insert into pkg_upgrade_table(patch_name, cur_pkg_path) values('n', '/p'), ('n', '/D'), "
        "('m', '/p')");
    request.table = 2;
    EXPECT_EQ(delete_table_record_from_db(connection.db(), &request, DeleteForm::patch_and_path),
              0);
    EXPECT_EQ(sql(main_db, "select patch_name, cur_pkg_path from pkg_upgrade_table"),
              (std::vector<SqlRow>{{"n", "/D"}, {"m", "/p"}}));
    EXPECT_EQ(delete_table_record_from_db(connection.db(), &request, DeleteForm::name), 0);
    EXPECT_EQ(sql(main_db, "select patch_name from pkg_upgrade_table"),
              (std::vector<SqlRow>{{"m"}}));
    sql(main_db, "insert into server_table values(-3, 0), (3, 0)");
    request.table = 3;
    EXPECT_EQ(delete_table_record_from_db(connection.db(), &request, DeleteForm::sync_id), 0);
    EXPECT_EQ(sql(main_db, "select sync_id from server_table"), (std::vector<SqlRow>{{"3"}}));
}

TEST_F(Delete, ReportsAnErrorAndIsNotTriedAgain) {
    Connection other(main_db);
    other.run("begin immediate");
    request.table = 2;
    EXPECT_EQ(del_pkg_info_table(connection.db(), &request), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "del_pkg_info_table", "sqlite error: database is locked\n"));
    EXPECT_EQ(delete_table_record_from_db(connection.db(), &request, DeleteForm::name), -1);
    EXPECT_TRUE(
        logged("CMPNT_ERROR", "delete_table_record_from_db", "sqlite error: database is locked\n"));
    EXPECT_EQ(trace_lines().size(), 2u);
    EXPECT_EQ(fault::calls("nanosleep"), 0);
}
