#include "tests/support/device_test.hh"
#include "tests/support/hotpatch_record.hh"
#include "tests/support/sqlite.hh"

namespace {

using Texts = std::vector<std::string>;

const std::string checker = "libcmpnt_db_check_hp_tgt_md5";
const std::string package_path = "/d/r.deb";
const std::string target = "/opt/routed";

// The target as shipped and with its symbols stripped, and the digests of both.
const std::string shipped = "abc";
const std::string stripped = "a";
const std::string shipped_md5 = "900150983cd24fb0d6963f7d28e17f72";
const std::string stripped_md5 = "0cc175b9c0f1b6a831c399e269772661";

void add_row(const std::string &patch, const std::string &path, const std::string &target_path,
             const std::string &md5, const std::string &strip_md5, int op_flag = 0x20) {
    sql(main_db,
        "insert into pkg_upgrade_table(patch_name, pkg_name, cur_pkg_path, op_flag, "
        "hotpatch_target_path, hotpatch_target_md5, hotpatch_target_strip_md5) values('" +
            patch + "', 'routed', '" + path + "', " + std::to_string(op_flag) + ", '" +
            target_path + "', '" + md5 + "', '" + strip_md5 + "')");
}

int32_t check(const std::string &path = package_path) {
    return libcmpnt_db_check_hp_tgt_md5(path.c_str());
}

std::string upper_case(std::string text) {
    for (char &c : text) {
        c = static_cast<char>(toupper(static_cast<unsigned char>(c)));
    }
    return text;
}

}  // namespace

class HotpatchTargetCheckTest : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        make_directories("/var/lib/opkg");
        ASSERT_EQ(cmpnt_create_pkg_table(CMPNT_PKG_UPGRADE_TABLE, CMPNT_DB_MAIN), 0);
        fault::reset();
    }

    void add_hot_patch() { add_row("SMU-1", package_path, target, shipped_md5, stripped_md5); }

    void expect_empty_list() {
        EXPECT_EQ(records_of(cmpnt_hp_list), Texts());
        EXPECT_TRUE(is_well_linked(cmpnt_hp_list));
    }

    void expect_refusal(const std::string &path = target) {
        EXPECT_TRUE(logged("CLIENT_TRACE", checker, "try to check md5 as striped version\n"));
        EXPECT_TRUE(logged("CMPNT_ERROR", checker, "file_md5_check fail(" + path + ").\n"));
        EXPECT_EQ(trace_lines().back().function, checker);
        expect_empty_list();
    }
};

TEST_F(HotpatchTargetCheckTest, PassesTheTargetAsShipped) {
    add_hot_patch();
    write_file(target, shipped);
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(trace_messages(), Texts());
    expect_empty_list();
}

TEST_F(HotpatchTargetCheckTest, PassesTheStrippedTargetOnTheSecondTry) {
    add_hot_patch();
    write_file(target, stripped);
    EXPECT_EQ(check(), 0);
    EXPECT_TRUE(logged("CLIENT_TRACE", checker, "try to check md5 as striped version\n"));
    EXPECT_EQ(trace_lines().size(), 2u);  // the other is of the first try
    expect_empty_list();
}

TEST_F(HotpatchTargetCheckTest, RefusesATargetThatIsNeither) {
    add_hot_patch();
    write_file(target, "abd");
    EXPECT_EQ(check(), -1);
    expect_refusal();
    EXPECT_EQ(trace_lines().size(), 4u);
}

TEST_F(HotpatchTargetCheckTest, RefusesATargetThatIsMissing) {
    add_hot_patch();
    EXPECT_EQ(check(), -1);
    expect_refusal();
}

TEST_F(HotpatchTargetCheckTest, PassesAPathThatNoRecordHas) {
    add_hot_patch();
    for (const char *path : {"", "/d/r.de", "/d/r.debx", "/D/r.deb", "d/r.deb"}) {
        EXPECT_EQ(check(path), 0) << path;
    }
    EXPECT_EQ(trace_messages(), Texts());
    expect_empty_list();
}

TEST_F(HotpatchTargetCheckTest, TakesDigestsAsTheyAreWritten) {
    write_file(target, shipped);
    for (const std::string &digest :
         {std::string(), upper_case(shipped_md5), shipped_md5 + " ", " " + shipped_md5,
          shipped_md5 + ";" + shipped_md5, shipped_md5.substr(1)}) {
        sql(main_db, "delete from pkg_upgrade_table");
        forget_log();
        add_row("SMU-1", package_path, target, digest, digest);
        EXPECT_EQ(check(), -1) << digest;
        expect_refusal();
    }
}

TEST_F(HotpatchTargetCheckTest, TakesEitherDigestForEitherFile) {
    add_row("SMU-1", "/d/1", target, shipped_md5, "");
    add_row("SMU-2", "/d/2", target, "", shipped_md5);
    write_file(target, shipped);
    EXPECT_EQ(check("/d/1"), 0);
    EXPECT_EQ(check("/d/2"), 0);
}

TEST_F(HotpatchTargetCheckTest, ChecksRecordsOfEveryKind) {
    add_row("SMU-1", package_path, target, shipped_md5, stripped_md5, 0);
    write_file(target, "abd");
    EXPECT_EQ(check(), -1);
    expect_refusal();
}

TEST_F(HotpatchTargetCheckTest, TakesTheFirstRecordWithThePath) {
    add_row("SMU-1", "/d/other", "/opt/other", shipped_md5, shipped_md5);
    add_row("SMU-2", package_path, target, shipped_md5, stripped_md5);
    add_row("SMU-3", package_path, "/opt/missing", shipped_md5, stripped_md5);
    write_file(target, shipped);
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(check("/d/other"), -1);
    expect_refusal("/opt/other");
}

TEST_F(HotpatchTargetCheckTest, DoesNotSeeASecondRowOfAPatchAndPackage) {
    add_row("SMU-1", "/d/other", target, shipped_md5, stripped_md5);
    add_hot_patch();
    EXPECT_EQ(check(), 0);  // although the target is missing
    EXPECT_EQ(check("/d/other"), -1);
}

TEST_F(HotpatchTargetCheckTest, FindsNoFileByAPathOfSeveralOrOneThatWasCut) {
    add_row("SMU-1", "/d/1", target + ";" + target, shipped_md5, stripped_md5);
    const std::string too_long = "/opt/" + std::string(255, 'p');
    add_row("SMU-2", "/d/2", too_long, shipped_md5, stripped_md5);
    write_file(target, shipped);
    EXPECT_EQ(check("/d/1"), -1);
    expect_refusal(target + ";" + target);
    EXPECT_EQ(check("/d/2"), -1);
    expect_refusal(too_long.substr(0, 259));
}

TEST_F(HotpatchTargetCheckTest, RefusesNullAndLeavesTheList) {
    const cmpnt_upgrade_value record = hotpatch_record();
    insert_cmpnt_upgrade_db_to_list(&record, CMPNT_HP_LIST);
    EXPECT_EQ(libcmpnt_db_check_hp_tgt_md5(nullptr), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", checker, "param is null.\n"));
    EXPECT_EQ(records_of(cmpnt_hp_list).size(), 1u);
}

TEST_F(HotpatchTargetCheckTest, ChecksTheDatabaseAndNotWhatTheListHeld) {
    cmpnt_upgrade_value record = hotpatch_record();
    set_text(record.cur_pkg_path, package_path);
    insert_cmpnt_upgrade_db_to_list(&record, CMPNT_HP_LIST);
    EXPECT_EQ(check(), 0);
    expect_empty_list();
}

TEST_F(HotpatchTargetCheckTest, MayBeAskedForWithATextOfTheList) {
    add_row("SMU-1", "/d/other", target, shipped_md5, stripped_md5);
    add_row("SMU-2", package_path, "/opt/missing", shipped_md5, stripped_md5);
    write_file(target, shipped);
    const cmpnt_upgrade_value record = hotpatch_record();
    ASSERT_EQ(package_path, record.cur_pkg_path);
    insert_cmpnt_upgrade_db_to_list(&record, CMPNT_HP_LIST);
    const char *path = CMPNT_UPGRADE_NODE(cmpnt_hp_list.next)->value.cur_pkg_path;
    EXPECT_EQ(libcmpnt_db_check_hp_tgt_md5(path), -1);
    expect_refusal("/opt/missing");
}

TEST_F(HotpatchTargetCheckTest, TakesNoPathForAnotherThatItBeginsWith) {
    const std::string longest = "/" + std::string(258, 'p');
    add_row("SMU-1", longest, "/opt/missing", shipped_md5, stripped_md5);
    EXPECT_EQ(check(longest), -1);
    for (size_t more : {1, 2, 3, 1000}) {
        EXPECT_EQ(check(longest + std::string(more, 'p')), 0) << more;
    }
}

TEST_F(HotpatchTargetCheckTest, PassesWithoutADatabase) {
    remove_tree(main_db);
    EXPECT_EQ(check(), 0);
    EXPECT_FALSE(exists(main_db));
}

TEST_F(HotpatchTargetCheckTest, FailsWhenTheRecordsCannotBeLoaded) {
    const cmpnt_upgrade_value record = hotpatch_record();
    insert_cmpnt_upgrade_db_to_list(&record, CMPNT_HP_LIST);
    write_file(main_db, std::string(4096, 'x'));
    EXPECT_EQ(check(), -2);
    EXPECT_TRUE(logged("CMPNT_ERROR", checker, "traverse_pkg_info_table fail.\n"));
    expect_empty_list();
}

TEST_F(HotpatchTargetCheckTest, FreesWhatAFailedLoadHadLoaded) {
    add_hot_patch();
    fault::fail("sqlite3_close", 1, 0);
    EXPECT_EQ(check(), -2);
    expect_empty_list();
}
