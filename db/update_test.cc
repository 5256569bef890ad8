#include "db/write.hh"
#include "tests/support/device_test.hh"
#include "tests/support/main_tables.hh"
#include "tests/support/sqlite.hh"

class Update : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        create_main_tables();
    }

    int32_t update(int32_t table, UpdateForm form) {
        request.table = table;
        return update_pkg_info_table(connection.db(), &request, form);
    }

    // The statement of a form on a table, which succeeds; "" for none.
    std::string statement_of(int32_t table, UpdateForm form) {
        connection.statements();
        EXPECT_EQ(update(table, form), 0);
        const std::vector<std::string> statements = connection.statements();
        return statements.empty() ? "" : statements[0];
    }

    cmpnt_db_request request = whole_request();
    Connection connection{main_db};
};

TEST_F(Update, EachFormHasItsStatementOnItsTablesAndNoneOnOthers) {
    const std::string upgrade = "update pkg_upgrade_table set ";
    const std::string of_patch = " where patch_name = 'n'";
    const std::string of_package_in_patch = " where patch_name = 'n' and pkg_name = 'k'";
    const struct {
        UpdateForm form;
        std::string statements[5];  // by table
    } cases[] = {
        {UpdateForm::state,
         {"", "update package_info_table set package_state = 4 where package_name = 'P'",
          upgrade + "pkg_state = 4" + of_patch, "", ""}},
        {UpdateForm::cur_flag_of_package_in_patch,
         {"", "", upgrade + "cur_flag = 6" + of_package_in_patch, "", ""}},
        {UpdateForm::cur_flag_of_patch, {"", "", upgrade + "cur_flag = 6" + of_patch, "", ""}},
        {UpdateForm::cur_flag_of_package,
         {"", "", upgrade + "cur_flag = 6 where pkg_name = 'k'", "", ""}},
        {UpdateForm::cur_flag_of_version,
         {"", "",
          upgrade + "cur_flag = 6 where pkg_name = 'k' and cur_version = '2' and pkg_state != '2'",
          "", ""}},
        {UpdateForm::state_of_package_in_patch,
         {"", "", upgrade + "pkg_state = 4" + of_package_in_patch, "", ""}},
        {UpdateForm::last_version,
         {"", "", upgrade + "last_version = '1'" + of_package_in_patch, "", ""}},
        {UpdateForm::path, {"", "", upgrade + "cur_pkg_path = '/p'" + of_package_in_patch, "", ""}},
        {UpdateForm::op_flag_of_patch, {"", "", upgrade + "op_flag = 7" + of_patch, "", ""}},
        {UpdateForm::op_flag_of_package_in_patch,
         {"", "", upgrade + "op_flag = 7" + of_package_in_patch, "", ""}},
        {UpdateForm::card_id_of_all, {"", "", upgrade + "card_id = -1", "", ""}},
        {UpdateForm::sync_flag,
         {"", "", "", "update server_table set sync_flag = 1 where sync_id = '-3'", ""}},
        {UpdateForm::effective_time, {"", "", upgrade + "effective_time = 't'" + of_patch, "", ""}},
        {UpdateForm::last_patch, {"", "", upgrade + "last_patch = 'l'" + of_patch, "", ""}},
        {UpdateForm::target_pkg_path,
         {"", "", upgrade + "hotpatch_target_pkg_path = 'hk'" + of_package_in_patch, "", ""}},
    };
    for (const auto &one : cases) {
        for (int32_t table = 0; table < 5; table++) {
            EXPECT_EQ(statement_of(table, one.form), one.statements[table]);
        }
    }
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(Update, ABaseRowGetsItsCurrentVersionAndState) {
    sql(main_db,
        "insert into package_info_table values('P', 'other base', NULL, 0, 5, 6), "
        "('Q', 'B', NULL, 0, 5, 6)");
    EXPECT_EQ(statement_of(1, UpdateForm::row),
              "update package_info_table set current_version = 'C', package_state = 4 where "
              "package_name = 'P'");
    EXPECT_EQ(sql(main_db, "select * from package_info_table"),
              (std::vector<SqlRow>{{"P", "other base", "C", "4", "5", "6"},
                                   {"Q", "B", "NULL", "0", "5", "6"}}));
}

// SQLite refuses the comma before "where".
TEST_F(Update, AnUpgradeRowIsNeverRewritten) {
    const std::string statement =
        "update pkg_upgrade_table set pkg_name = 'k', cur_version = '2', last_version = '1',"
        "                 pkg_state = '4', card_id = '-1', cur_flag = '6', op_flag = '7', "
        "description = 'd', patch_ver = 'v', patch_id = 'i',                 "
        "effective_time = 't', last_patch = 'l', patch_size = '8', patch_type = '9', "
        "patch_order = '10', hotpatch_file = 'hf', hotpatch_target = 'ht',                 "
        "hotpatch_target_path = 'hp', hotpatch_target_pkg_path = 'hk', where patch_name = 'n' "
        "and cur_pkg_path = '/p'";
    fault::skip_sleeps();
    EXPECT_EQ(update(2, UpdateForm::row), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_sqlite3_exec",
                       "sqlite error: near \"where\": syntax error, table(" + statement + ")\n"));
    EXPECT_EQ(traced("error", "cmpnt_sqlite3_exec", "cmpnt_sqlite3_exec fail\n"), 1);
    EXPECT_EQ(trace_lines().size(), 2u);
    EXPECT_EQ(fault::calls("nanosleep"), 0);
}

TEST_F(Update, AnAutoSyncRowIsRewrittenButForItsHotPatchColumns) {
    sql(main_db, "insert into auto_sync_table(patch_name, hotpatch_file) values('n', 'kept')");
    EXPECT_EQ(statement_of(4, UpdateForm::row),
              "update auto_sync_table set pkg_name = 'k', cur_pkg_path = '/p', cur_version = "
              "'2', last_version = '1',         pkg_state = '4', card_id = '-1', cur_flag = "
              "'6', op_flag = '7', description = 'd', patch_ver = 'v', patch_id = 'i',         "
              "effective_time = 't', last_patch = 'l', patch_size = '8', patch_type = '9', "
              "patch_order = '10' where patch_name = 'n'");
    EXPECT_EQ(sql(main_db, "select * from auto_sync_table"),
              (std::vector<SqlRow>{{"n",  "k",    "/p",   "2",    "1",    "4",    "-1",  "6",
                                    "7",  "d",    "v",    "i",    "t",    "l",    "8",   "9",
                                    "10", "kept", "NULL", "NULL", "NULL", "NULL", "NULL"}}));
    EXPECT_EQ(sql(main_db, "select typeof(pkg_state), typeof(patch_order) from auto_sync_table"),
              (std::vector<SqlRow>{{"integer", "integer"}}));
}

TEST_F(Update, ARowOfAnotherTableIsNotRewritten) {
    for (int32_t table : {0, 3, 5}) {
        EXPECT_EQ(statement_of(table, UpdateForm::row), "");
    }
}

TEST_F(Update, AFlagOfAVersionIsNotSetOnInstalledRows) {
    sql(main_db,
        "insert into pkg_upgrade_table(pkg_name, cur_version, pkg_state, cur_flag) "
        "values('k', '2', 2, 0), ('k', '2', 4, 0), ('k', '3', 4, 0), ('k', '2', NULL, 0)");
    EXPECT_EQ(update(2, UpdateForm::cur_flag_of_version), 0);
    EXPECT_EQ(sql(main_db, "select cur_flag from pkg_upgrade_table"),
              (std::vector<SqlRow>{{"0"}, {"6"}, {"0"}, {"0"}}));
}
