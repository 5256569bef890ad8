#include <string.h>

#include "tests/support/device_test.hh"
#include "tests/support/sqlite.hh"

class PatchQuery : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        make_directories("/var/lib/opkg");
        memset(&request, 'r', sizeof(request));
    }

    void create_table() {
        ASSERT_EQ(cmpnt_create_pkg_table(CMPNT_PKG_UPGRADE_TABLE, CMPNT_DB_MAIN), 0);
        sql(main_db,
            "insert into pkg_upgrade_table(patch_name, pkg_name, cur_version, pkg_state) "
            "values('first', 'a', '1.0', 4), ('second', 'b', '2.0', 6), "
            "('second', 'c', '3.0', 2)");
    }

    const std::string function = "cmpnt_get_db_by_patch";
    cmpnt_db_request request;
};

TEST_F(PatchQuery, ReadsTheRecord) {
    create_table();
    EXPECT_EQ(cmpnt_get_db_by_patch(&request, "first"), 0);
    EXPECT_EQ(request.exist, 1);
    EXPECT_STREQ(request.record.patch_name, "first");
    EXPECT_STREQ(request.record.pkg_name, "a");
    EXPECT_STREQ(request.record.cur_version, "1.0");
    EXPECT_EQ(request.record.pkg_state, 4);
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(PatchQuery, OfSeveralRecordsKeepsTheLast) {
    create_table();
    EXPECT_EQ(cmpnt_get_db_by_patch(&request, "second"), 0);
    EXPECT_STREQ(request.record.pkg_name, "c");
    EXPECT_EQ(request.record.pkg_state, 2);
}

TEST_F(PatchQuery, ClearsTheRequestAndSaysWhatItAsked) {
    create_table();
    EXPECT_EQ(cmpnt_get_db_by_patch(&request, "absent"), 0);
    cmpnt_db_request expected = {};
    expected.table = CMPNT_PKG_UPGRADE_TABLE;
    expected.cmd = 3;
    strcpy(expected.record.patch_name, "absent");
    EXPECT_EQ(memcmp(&request, &expected, sizeof(request)), 0);
}

TEST_F(PatchQuery, TakesANameThatLiesInTheRequest) {
    create_table();
    strcpy(request.record.patch_name, "second");
    EXPECT_EQ(cmpnt_get_db_by_patch(&request, request.record.patch_name), 0);
    EXPECT_EQ(request.exist, 1);
    EXPECT_STREQ(request.record.pkg_name, "c");
}

TEST_F(PatchQuery, TakesHostileNames) {
    create_table();
    for (const std::string &name : {std::string("x' or '1'='1"), std::string(5000, 'n')}) {
        EXPECT_EQ(cmpnt_get_db_by_patch(&request, name.c_str()), 0);
        EXPECT_EQ(request.exist, 0);
        EXPECT_EQ(request.record.patch_name, name.substr(0, 79));
    }
}

TEST_F(PatchQuery, FailsWithoutATable) {
    EXPECT_EQ(cmpnt_get_db_by_patch(&request, "first"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", function, "cmpnt_get_pkg_info_database fail.\n"));
}

TEST_F(PatchQuery, RefusesNullAndLeavesTheRequest) {
    const cmpnt_db_request before = request;
    EXPECT_EQ(cmpnt_get_db_by_patch(&request, nullptr), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", function, "param is null.\n"));
    EXPECT_EQ(memcmp(&request, &before, sizeof(request)), 0);
    forget_log();
    EXPECT_EQ(cmpnt_get_db_by_patch(nullptr, "first"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", function, "param is null.\n"));
}
