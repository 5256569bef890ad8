#include <string.h>

#include "db/query.hh"
#include "tests/support/device_test.hh"
#include "tests/support/sqlite.hh"
#include "tests/support/upgrade_records.hh"

// Queries of pkg_upgrade_table ask the record; those of the other tables have fixtures of their own.
class QueryMatch : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        make_directories("/var/lib/opkg");
        for (int32_t table : {1, 2, 3}) {
            ASSERT_EQ(cmpnt_create_pkg_table(table, CMPNT_DB_MAIN), 0);
        }
        request.table = CMPNT_PKG_UPGRADE_TABLE;
    }

    // Columns and values as in an insert: "patch_name, cur_flag", "'SMU-1', 1".
    void add(const std::string &columns, const std::string &values,
             const std::string &table = "pkg_upgrade_table") {
        ASSERT_TRUE(
            sql(main_db, "insert into " + table + "(" + columns + ") values(" + values + ")")
                .empty());
    }

    // A row whose version tells it from the others.
    void add_version(const std::string &version, const std::string &columns,
                     const std::string &values) {
        add("cur_version, " + columns, "'" + version + "', " + values);
    }

    int32_t ask(int32_t cmd) {
        request.cmd = cmd;
        return cmpnt_get_pkg_info_database(&request);
    }

    // Which row was copied; empty when none was.
    std::string copied() { return request.record.cur_version; }

    cmpnt_db_request request = {};
};

TEST_F(QueryMatch, OfANameCopiesTheWholeRow) {
    add("patch_name, pkg_name, cur_pkg_path, cur_version, last_version, pkg_state, card_id, "
        "cur_flag, op_flag, description, patch_ver, patch_id, effective_time, last_patch, "
        "patch_size, patch_type, patch_order, hotpatch_file, hotpatch_target, "
        "hotpatch_target_path, hotpatch_target_pkg_path, hotpatch_target_md5, "
        "hotpatch_target_strip_md5",
        "'SMU-1', 'a', '/p', '1.1', '1.0', 4, 5, 6, 7, 'text', 'v', 'id', 'now', 'SMU-0', 8, 9, "
        "10, 'f', 't', 'tp', 'tpp', 'm', 's'");
    strcpy(request.record.patch_name, "SMU-1");
    ASSERT_EQ(ask(query_patch), 0);
    EXPECT_EQ(request.exist, 1);
    cmpnt_pkg_record expected = {};
    expected.pkg_state = 4;
    expected.card_id = 5;
    expected.cur_flag = 6;
    expected.op_flag = 7;
    expected.patch_size = 8;
    expected.patch_order = 10;
    expected.patch_type = 9;
    strcpy(expected.patch_name, "SMU-1");
    strcpy(expected.pkg_name, "a");
    strcpy(expected.cur_pkg_path, "/p");
    strcpy(expected.cur_version, "1.1");
    strcpy(expected.last_version, "1.0");
    strcpy(expected.description, "text");
    strcpy(expected.patch_ver, "v");
    strcpy(expected.patch_id, "id");
    strcpy(expected.effective_time, "now");
    strcpy(expected.last_patch, "SMU-0");
    strcpy(expected.hotpatch_file, "f");
    strcpy(expected.hotpatch_target, "t");
    strcpy(expected.hotpatch_target_path, "tp");
    strcpy(expected.hotpatch_target_pkg_path, "tpp");
    EXPECT_EQ(memcmp(&request.record, &expected, sizeof(expected)), 0);
    EXPECT_EQ(request.table, CMPNT_PKG_UPGRADE_TABLE);
    EXPECT_EQ(request.cmd, query_patch);
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(QueryMatch, LeavesTheRequestAloneWhenNoRowMatches) {
    add("patch_name, pkg_name, cur_pkg_path, cur_version, pkg_state, cur_flag, op_flag",
        "'other', 'other', 'other', '1.0', 2, 0, 0");
    strcpy(request.record.patch_name, "SMU-1");
    strcpy(request.record.pkg_name, "a");
    strcpy(request.record.cur_pkg_path, "/p");
    strcpy(request.record.cur_version, "1.0");
    for (int32_t cmd : {2, 3, 4, 5, 7, 8, 9, 10, 11, 12}) {
        request.cmd = cmd;
        const cmpnt_db_request before = request;
        EXPECT_EQ(ask(cmd), 0);
        EXPECT_EQ(memcmp(&request, &before, sizeof(request)), 0) << cmd;
    }
    EXPECT_TRUE(records_of(cmpnt_upgrade_list).empty());
}

TEST_F(QueryMatch, ReadsNothingForACodeThatIsNone) {
    add("patch_name, pkg_name, pkg_state, cur_flag, op_flag", "'', '', 4, 1, 255");
    for (int32_t cmd : {0, 13, 14, -1, INT32_MAX, INT32_MIN}) {
        request.cmd = cmd;
        const cmpnt_db_request before = request;
        EXPECT_EQ(ask(cmd), 0);
        EXPECT_EQ(memcmp(&request, &before, sizeof(request)), 0) << cmd;
    }
}

TEST_F(QueryMatch, EndsWithTheLastRowThatMatches) {
    add_version("1.0", "patch_name", "'SMU-1'");
    add_version("2.0", "patch_name", "'SMU-1'");
    add_version("3.0", "patch_name", "'SMU-2'");
    strcpy(request.record.patch_name, "SMU-1");
    EXPECT_EQ(ask(query_patch), 0);
    EXPECT_EQ(copied(), "2.0");
}

TEST_F(QueryMatch, ANullOfALaterRowDoesNotKeepTheFormerRowsText) {
    add("patch_name, description, patch_size", "'SMU-1', 'first', 1");
    add("patch_name", "'SMU-1'");
    strcpy(request.record.patch_name, "SMU-1");
    EXPECT_EQ(ask(query_patch), 0);
    EXPECT_STREQ(request.record.description, "");
    EXPECT_EQ(request.record.patch_size, 0);
}

TEST_F(QueryMatch, ComparesTextsToTheLetter) {
    for (const char *name : {"'smu-1'", "'SMU-1 '", "'SMU-10'", "'SMU-'", "null", "''"}) {
        add_version("1.0", "patch_name", name);
    }
    strcpy(request.record.patch_name, "SMU-1");
    EXPECT_EQ(ask(query_patch), 0);
    EXPECT_EQ(request.exist, 0);
    EXPECT_EQ(copied(), "");
}

TEST_F(QueryMatch, ATextThatIsCutToItsFieldIsNotTheSame) {
    const std::string name(79, 'n');
    add_version("1.0", "patch_name", "'" + name + "n'");
    set_text(request.record.patch_name, name);
    EXPECT_EQ(ask(query_patch), 0);
    EXPECT_EQ(request.exist, 0);
}

// Code 1.
TEST_F(QueryMatch, PatchOfPackageIsCopiedWithoutBeingFound) {
    add_version("1.0", "patch_name, pkg_name", "'SMU-1', 'a'");
    add_version("2.0", "patch_name, pkg_name", "'SMU-1', 'a'");
    strcpy(request.record.patch_name, "SMU-1");
    strcpy(request.record.pkg_name, "a");
    EXPECT_EQ(ask(query_patch_of_pkg), 0);
    EXPECT_EQ(copied(), "2.0");
    EXPECT_EQ(request.exist, 0);
}

TEST_F(QueryMatch, PatchOfPackageFailsAtTheFirstOtherRow) {
    add_version("1.0", "patch_name, pkg_name", "'SMU-1', 'a'");
    add_version("2.0", "patch_name, pkg_name", "'SMU-1', 'b'");
    add_version("3.0", "patch_name, pkg_name", "'SMU-1', 'a'");
    strcpy(request.record.patch_name, "SMU-1");
    strcpy(request.record.pkg_name, "a");
    EXPECT_EQ(ask(query_patch_of_pkg), -1);
    EXPECT_EQ(copied(), "1.0");
    EXPECT_TRUE(logged("CMPNT_ERROR", "read_pkg_info_table",
                       "sqlite exec error: query aborted, sql_cmd(select *from "
                       "pkg_upgrade_table)\n"));
    strcpy(request.record.patch_name, "SMU-2");
    EXPECT_EQ(ask(query_patch_of_pkg), -1);
}

TEST_F(QueryMatch, PatchOfPackageSucceedsOverAnEmptyTable) {
    EXPECT_EQ(ask(query_patch_of_pkg), 0);
    EXPECT_EQ(request.exist, 0);
}

// Code 2.
TEST_F(QueryMatch, NewerVersionIsFoundAndNotCopied) {
    struct Case {
        const char *pkg_name, *version;
        int32_t state, exist;
    };
    strcpy(request.record.pkg_name, "a");
    strcpy(request.record.cur_version, "1.9");
    for (const Case &c :
         {Case{"a", "'1.10'", 6, 1}, Case{"a", "'1.10'", 4, 1}, Case{"a", "'1.10'", 2, 0},
          Case{"a", "'1.10'", 9, 0}, Case{"a", "'1.10'", 10, 0}, Case{"a", "'1.9'", 6, 0},
          Case{"a", "'1.8'", 6, 0}, Case{"b", "'1.10'", 6, 0}, Case{"a", "null", 6, 0}}) {
        sql(main_db, "delete from pkg_upgrade_table");
        add("patch_name, pkg_name, cur_version, pkg_state", "'SMU-1', '" + std::string(c.pkg_name) +
                                                                "', " + c.version + ", " +
                                                                std::to_string(c.state));
        request.exist = 0;
        EXPECT_EQ(ask(query_newer_version), 0);
        EXPECT_EQ(request.exist, c.exist) << c.pkg_name << c.version << c.state;
        EXPECT_STREQ(request.record.patch_name, "");
        EXPECT_EQ(copied(), "1.9");
    }
    EXPECT_TRUE(trace_messages().empty());
}

// Code 4.
TEST_F(QueryMatch, VersionOfPackageNeedsBoth) {
    add("pkg_name, cur_version, patch_name", "'a', '1.0', 'SMU-1'");
    add("pkg_name, cur_version, patch_name", "'a', '1.1', 'SMU-2'");
    add("pkg_name, cur_version, patch_name", "'b', '1.0', 'SMU-3'");
    strcpy(request.record.pkg_name, "a");
    strcpy(request.record.cur_version, "1.0");
    EXPECT_EQ(ask(query_version_of_pkg), 0);
    EXPECT_EQ(request.exist, 1);
    EXPECT_STREQ(request.record.patch_name, "SMU-1");
}

TEST_F(QueryMatch, VersionOfPackageIsComparedAsText) {
    add("pkg_name, cur_version", "'a', '1.00'");
    strcpy(request.record.pkg_name, "a");
    strcpy(request.record.cur_version, "1.0");
    EXPECT_EQ(ask(query_version_of_pkg), 0);
    EXPECT_EQ(request.exist, 0);
}

// Code 5.
TEST_F(QueryMatch, PathIsFoundAndCopied) {
    add_version("1.0", "cur_pkg_path", "'/opt/a'");
    add_version("2.0", "cur_pkg_path", "'/opt/b'");
    strcpy(request.record.cur_pkg_path, "/opt/a");
    EXPECT_EQ(ask(query_path), 0);
    EXPECT_EQ(request.exist, 1);
    EXPECT_EQ(copied(), "1.0");
}

// Code 6.
TEST_F(QueryMatch, ActiveTakesTheInvalidHotPatchToo) {
    for (int32_t state : {4, 9}) {
        sql(main_db, "delete from pkg_upgrade_table");
        add_version("1.0", "pkg_state", "6");
        add_version("2.0", "pkg_state", std::to_string(state));
        add_version("3.0", "pkg_state", "10");
        request.exist = 0;
        EXPECT_EQ(ask(query_active), 0);
        EXPECT_EQ(request.exist, 1);  // also when rows of other states follow
        EXPECT_EQ(copied(), "2.0");
    }
}

TEST_F(QueryMatch, ActiveTellsRowsWithoutAnActiveOneFromNoRows) {
    EXPECT_EQ(ask(query_active), 0);
    EXPECT_EQ(request.exist, 0);
    for (int32_t state : {0, 1, 2, 3, 5, 6, 7, 8, 10, 14, 15, -1}) {
        add_version("1.0", "pkg_state", std::to_string(state));
    }
    request.exist = 1;  // of an earlier question
    EXPECT_EQ(ask(query_active), 0);
    EXPECT_EQ(request.exist, 2);
    EXPECT_EQ(copied(), "");
}

TEST_F(QueryMatch, ActiveAnswersForTheOtherTablesToo) {
    add("package_name, package_state", "'a', 4", "package_info_table");
    add("sync_id", "1", "server_table");
    for (int32_t table : {1, 3}) {
        request = {};
        request.table = table;
        EXPECT_EQ(ask(query_active), 0);
        EXPECT_EQ(request.exist, 2) << table;
        EXPECT_STREQ(request.base.package_name, "");
    }
}

// Codes 7, 9, 10, 11 and 12: copied, and never called found.
TEST_F(QueryMatch, StatesAndFlagsAreCopiedWithoutBeingFound) {
    struct Case {
        int32_t cmd, state, cur_flag, op_flag;
        bool matches;
    };
    for (const Case &c : {
             Case{query_active_current, 4, 1, 0, true},
             Case{query_active_current, 4, -1, 0, true},
             Case{query_active_current, 4, 2, 0, true},
             Case{query_active_current, 4, 0, 0, false},
             Case{query_active_current, 6, 1, 0, false},
             Case{query_active_current, 9, 1, 0, false},
             Case{query_current, 0, 1, 0, true},
             Case{query_current, 0, 2, 0, false},
             Case{query_current, 4, 0, 0, false},
             Case{query_active_ready, 3, 0, 0, true},
             Case{query_active_ready, 11, 0, 0, false},
             Case{query_active_ready, 8, 0, 0, false},
             Case{query_deactive_ready, 8, 0, 0, true},
             Case{query_deactive_ready, 7, 0, 0, false},
             Case{query_deactive_ready, 3, 0, 0, false},
             Case{query_op_flag_bit_2, 0, 0, 4, true},
             Case{query_op_flag_bit_2, 0, 0, 0x2D, true},
             Case{query_op_flag_bit_2, 0, 0, -1, true},
             Case{query_op_flag_bit_2, 0, 0, 0x2B, false},
             Case{query_op_flag_bit_2, 0, 0, 8, false},
         }) {
        sql(main_db, "delete from pkg_upgrade_table");
        add_version("1.0", "pkg_state, cur_flag, op_flag",
                    std::to_string(c.state) + ", " + std::to_string(c.cur_flag) + ", " +
                        std::to_string(c.op_flag));
        request = {};
        request.table = CMPNT_PKG_UPGRADE_TABLE;
        EXPECT_EQ(ask(c.cmd), 0);
        EXPECT_EQ(copied(), c.matches ? "1.0" : "")
            << c.cmd << " " << c.state << " " << c.cur_flag << " " << c.op_flag;
        EXPECT_EQ(request.exist, 0);
    }
}

TEST_F(QueryMatch, NullStatesAndFlagsCountAsZero) {
    add_version("1.0", "pkg_state, cur_flag, op_flag", "null, null, null");
    for (int32_t cmd : {7, 9, 10, 11, 12}) {
        EXPECT_EQ(ask(cmd), 0);
        EXPECT_EQ(copied(), "") << cmd;
    }
}

// Code 8.
TEST_F(QueryMatch, PatchIntoListAddsEveryRowOfThePatch) {
    add_version("1.0", "patch_name, pkg_name, pkg_state", "'SMU-1', 'a', 4");
    add_version("2.0", "patch_name, pkg_name, pkg_state", "'SMU-2', 'b', 4");
    add_version("3.0", "patch_name, pkg_name, pkg_state", "'SMU-1', 'c', 6");
    strcpy(request.record.patch_name, "SMU-1");
    EXPECT_EQ(ask(query_patch_into_list), 0);
    EXPECT_EQ(request.exist, 1);
    EXPECT_EQ(request.table, CMPNT_PKG_UPGRADE_TABLE);
    EXPECT_EQ(request.cmd, query_patch_into_list);
    EXPECT_EQ(copied(), "3.0");
    EXPECT_EQ(records_of(cmpnt_upgrade_list),
              (std::vector<std::string>{"SMU-1 a 1.0", "SMU-1 c 3.0"}));
    EXPECT_STREQ(CMPNT_UPGRADE_NODE(cmpnt_upgrade_list.prev)->value.state_name, "running");
    EXPECT_TRUE(records_of(cmpnt_hp_list).empty());
}

TEST_F(QueryMatch, PatchIntoListKeepsTheFirstOfADuplicate) {
    add_version("1.0", "patch_name, pkg_name", "'SMU-1', 'a'");
    add_version("2.0", "patch_name, pkg_name", "'SMU-1', 'a'");
    strcpy(request.record.patch_name, "SMU-1");
    EXPECT_EQ(ask(query_patch_into_list), 0);
    EXPECT_EQ(copied(), "2.0");
    EXPECT_EQ(records_of(cmpnt_upgrade_list), (std::vector<std::string>{"SMU-1 a 1.0"}));
}

TEST_F(QueryMatch, PatchIntoListGoesOnWithoutMemory) {
    add_version("1.0", "patch_name, pkg_name", "'SMU-1', 'a'");
    add_version("2.0", "patch_name, pkg_name", "'SMU-1', 'b'");
    strcpy(request.record.patch_name, "SMU-1");
    fault::fail("calloc", 1, ENOMEM);
    EXPECT_EQ(ask(query_patch_into_list), 0);
    EXPECT_EQ(records_of(cmpnt_upgrade_list), (std::vector<std::string>{"SMU-1 b 2.0"}));
}

// package_info_table.
class BaseQueryMatch : public QueryMatch {
protected:
    void SetUp() override {
        QueryMatch::SetUp();
        request.table = CMPNT_PACKAGE_INFO_TABLE;
    }

    void add_base(const std::string &values) {
        add("package_name, base_version, current_version, package_state, package_is_new, "
            "upgrade_count",
            values, "package_info_table");
    }
};

TEST_F(BaseQueryMatch, DeactiveColdIsFoundAndEndsWithTheLastRow) {
    add_base("'a', '1.0', '1.1', 7, 1, 2");
    add_base("'b', '2.0', '2.1', 7, 3, 4");
    add_base("'c', '3.0', '3.1', 8, 5, 6");
    EXPECT_EQ(ask(base_query_deactive_cold), 0);
    EXPECT_EQ(request.exist, 1);
    EXPECT_STREQ(request.base.package_name, "b");
    EXPECT_STREQ(request.base.base_version, "2.0");
    EXPECT_STREQ(request.base.current_version, "2.1");
    EXPECT_EQ(request.base.package_state, 7);
    EXPECT_EQ(request.base.package_is_new, 3);
    EXPECT_EQ(request.base.upgrade_count, 4);
}

TEST_F(BaseQueryMatch, APackageIsCopiedByItsNameWithoutBeingFound) {
    add_base("'a', '1.0', '1.1', 2, 0, 0");
    add_base("'b', '2.0', null, 2, 0, 0");
    strcpy(request.base.package_name, "b");
    EXPECT_EQ(ask(base_query_package), 0);
    EXPECT_EQ(request.exist, 0);
    EXPECT_STREQ(request.base.base_version, "2.0");
    EXPECT_STREQ(request.base.current_version, "");
}

TEST_F(BaseQueryMatch, OtherCodesReadNothing) {
    add_base("'a', '1.0', '1.1', 7, 1, 2");
    strcpy(request.base.package_name, "a");
    for (int32_t cmd : {0, 3, 4, 5, 7, 8, 9, 10, 11, 12, 13, -1}) {
        EXPECT_EQ(ask(cmd), 0);
        EXPECT_EQ(request.exist, 0) << cmd;
        EXPECT_STREQ(request.base.base_version, "") << cmd;
    }
}

// server_table.
class ServerQueryMatch : public QueryMatch {
protected:
    void SetUp() override {
        QueryMatch::SetUp();
        add("sync_id, sync_flag", "1, 10", "server_table");
        add("sync_id, sync_flag", "2, 20", "server_table");
        add("sync_id, sync_flag", "2, 21", "server_table");
        add("sync_id, sync_flag", "0, 30", "server_table");
        request.table = CMPNT_SERVER_TABLE;
    }
};

TEST_F(ServerQueryMatch, TheFirstRowOfTheIdIsAllThatIsLeftInTheRequest) {
    request.db_type = 7;  // the main file as well
    strcpy(request.record.patch_name, "SMU-1");
    request.sync_id = 2;
    EXPECT_EQ(ask(server_query_sync_id), 0);
    cmpnt_db_request expected = {};
    expected.exist = 1;
    expected.sync_id = 2;
    expected.sync_flag = 20;
    EXPECT_EQ(memcmp(&request, &expected, sizeof(expected)), 0);
}

TEST_F(ServerQueryMatch, LeavesTheRequestAloneWithoutSuchAnId) {
    request.sync_id = 3;
    request.cmd = server_query_sync_id;
    const cmpnt_db_request before = request;
    EXPECT_EQ(ask(server_query_sync_id), 0);
    EXPECT_EQ(memcmp(&request, &before, sizeof(before)), 0);
}

TEST_F(ServerQueryMatch, OtherCodesReadNothing) {
    request.sync_id = 2;
    for (int32_t cmd : {0, 1, 2, 3, 12, 14}) {
        EXPECT_EQ(ask(cmd), 0);
        EXPECT_EQ(request.exist, 0) << cmd;
        EXPECT_EQ(request.sync_flag, 0) << cmd;
    }
}
