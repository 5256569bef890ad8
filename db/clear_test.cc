#include "db/clear.hh"

#include <unistd.h>

#include "tests/support/device_test.hh"
#include "tests/support/fake_row.hh"
#include "tests/support/sqlite.hh"
#include "tests/support/upgrade_records.hh"

namespace {

using Texts = std::vector<std::string>;

}  // namespace

class ClearTest : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        make_directories("/var/lib/opkg");
        ASSERT_EQ(cmpnt_create_pkg_table(CMPNT_PKG_UPGRADE_TABLE, CMPNT_DB_MAIN), 0);
    }

    void add(const std::string &patch, const std::string &path, const std::string &state = "2",
             const std::string &cur_flag = "1") {
        sql(main_db,
            "insert into pkg_upgrade_table(patch_name, cur_pkg_path, pkg_state, cur_flag) "
            "values('" +
                patch + "', '" + path + "', " + state + ", " + cur_flag + ")");
    }

    // A file of an SMU, and its row.
    void add_file(const std::string &patch, const std::string &path, const std::string &state = "2",
                  const std::string &cur_flag = "1") {
        write_file(path, "package");
        add(patch, path, state, cur_flag);
    }

    int32_t clear(uint32_t arg = 0, int32_t table = CMPNT_PKG_UPGRADE_TABLE) {
        return traverse_pkg_info_table(table, CMPNT_ROWS_CLEAR, arg, CMPNT_DB_MAIN);
    }

    void hold_in_upgrade_list(const std::string &patch) {
        const cmpnt_upgrade_value record = upgrade_record(patch, "a");
        ASSERT_EQ(insert_cmpnt_upgrade_db_to_list(&record, CMPNT_UPGRADE_LIST), 0);
    }
};

TEST_F(ClearTest, RemovesTheDirectoryOfAnSmu) {
    add_file("SMU-1", "/opt/SMU-1.single/a.deb");
    write_file("/opt/SMU-1.single/deeper/b", "more");
    write_file("/opt/other/c", "stays");
    hold_in_upgrade_list("SMU-2");
    EXPECT_EQ(clear(0x0201), 0);
    EXPECT_FALSE(exists("/opt/SMU-1.single"));
    EXPECT_TRUE(exists("/opt/other/c"));
    EXPECT_EQ(trace_messages(),
              (Texts{"trace cmpnt_get_smu_name_and_path: read smu_name from db: smu_name(SMU-1), "
                     "path(/opt/SMU-1.single/a.deb)\n",
                     "trace select_clear_callback: prepare clear: smu_name(SMU-1), "
                     "path(/opt/SMU-1.single/a.deb), com_type(1), dev_type(2)\n",
                     "trace select_clear_callback: prepare delete file(/opt/SMU-1.single)\n"}));
    EXPECT_TRUE(logged("CMPNT_TRACE", "cmpnt_get_smu_name_and_path",
                       "read smu_name from db: smu_name(SMU-1), path(/opt/SMU-1.single/a.deb)\n"));
    EXPECT_TRUE(logged("CMPNT_TRACE", "select_clear_callback",
                       "prepare clear: smu_name(SMU-1), path(/opt/SMU-1.single/a.deb), "
                       "com_type(1), dev_type(2)\n"));
    EXPECT_TRUE(
        logged("CMPNT_TRACE", "select_clear_callback", "prepare delete file(/opt/SMU-1.single)\n"));
}

TEST_F(ClearTest, TakesTheTwoLowBytesOfTheArgument) {
    struct Case {
        uint32_t arg;
        const char *types;
    };
    add("SMU-1", "/opt/none/a");
    hold_in_upgrade_list("SMU-2");
    for (const Case &c :
         {Case{0, "com_type(0), dev_type(0)"}, Case{0x0102, "com_type(2), dev_type(1)"},
          Case{0xFFFFFFFF, "com_type(255), dev_type(255)"},
          Case{0xABCD0000, "com_type(0), dev_type(0)"}}) {
        forget_log();
        EXPECT_EQ(clear(c.arg), 0);
        EXPECT_EQ(traced("trace", "select_clear_callback",
                         "prepare clear: smu_name(SMU-1), path(/opt/none/a), " +
                             std::string(c.types) + "\n"),
                  1);
    }
}

TEST_F(ClearTest, ClearsWhatIsInstalledOnlyOrNotCurrent) {
    struct Case {
        const char *state, *cur_flag;
        bool cleared;
    };
    hold_in_upgrade_list("SMU-2");
    for (const Case &c :
         {Case{"2", "1", true}, Case{"2", "0", true}, Case{"4", "0", true}, Case{"null", "0", true},
          Case{"6", "null", true}, Case{"4", "1", false}, Case{"6", "1", false},
          Case{"4", "-1", false}, Case{"null", "1", false}}) {
        sql(main_db, "delete from pkg_upgrade_table");
        forget_log();
        add_file("SMU-1", "/opt/SMU-1/a", c.state, c.cur_flag);
        EXPECT_EQ(clear(), 0);
        EXPECT_EQ(exists("/opt/SMU-1"), !c.cleared) << c.state << " " << c.cur_flag;
        EXPECT_EQ(trace_messages().empty(), !c.cleared);
    }
}

TEST_F(ClearTest, LeavesAnSmuOfTheUpgradeListAlone) {
    add_file("SMU-1", "/opt/SMU-1/a");
    add_file("SMU-2", "/opt/SMU-2/a");
    hold_in_upgrade_list("SMU-1");
    EXPECT_EQ(clear(), 0);
    EXPECT_TRUE(exists("/opt/SMU-1/a"));
    EXPECT_FALSE(exists("/opt/SMU-2"));
    EXPECT_EQ(traced("trace", "cmpnt_get_smu_name_and_path",
                     "read smu_name from db: smu_name(SMU-1), path(/opt/SMU-1/a)\n"),
              1);
    for (const std::string &message : trace_messages()) {
        EXPECT_EQ(message.find("prepare clear: smu_name(SMU-1)"), std::string::npos);
    }
}

// A name is held cut, and a longer one is known by what is held of it.
TEST_F(ClearTest, KnowsAnSmuByTheNameThatTheListHolds) {
    const std::string name(79, 'n');
    add_file(name + "-and-more", "/opt/SMU-1/a");
    hold_in_upgrade_list(name);
    EXPECT_EQ(clear(), 0);
    EXPECT_TRUE(exists("/opt/SMU-1/a"));
}

TEST_F(ClearTest, NeverClearsADownloadDirectoryAndGoesOnWithTheNextRow) {
    add_file("SMU-1", "/opt/download/a");
    add_file("SMU-2", "/opt/x.downloads/a");
    add_file("SMU-3", "/opt/download/SMU-3/a");
    hold_in_upgrade_list("SMU-0");
    EXPECT_EQ(clear(), 0);
    EXPECT_TRUE(exists("/opt/download/a"));
    EXPECT_TRUE(exists("/opt/x.downloads/a"));
    EXPECT_FALSE(exists("/opt/download/SMU-3"));
    EXPECT_EQ(
        traced("trace", "select_clear_callback", "prepare delete file(/opt/download/SMU-3)\n"), 1);
    for (const std::string &message : trace_messages()) {
        EXPECT_EQ(message.find("prepare delete file(/opt/download)"), std::string::npos);
    }
}

TEST_F(ClearTest, RemovesALinkAndNotWhatItLeadsTo) {
    write_file("/data/precious/a", "stays");
    ASSERT_EQ(symlink("/data/precious", "/opt/SMU-1"), 0);
    add("SMU-1", "/opt/SMU-1/a");
    EXPECT_EQ(clear(), 0);
    EXPECT_FALSE(exists("/opt/SMU-1"));
    EXPECT_TRUE(exists("/data/precious/a"));
}

TEST_F(ClearTest, SucceedsWhereThereIsNothingToRemove) {
    add("SMU-1", "/opt/gone/a");
    add("SMU-2", "");
    add("SMU-3", "/a");  // its directory is the empty text, and not the root
    write_file("/opt/kept", "stays");
    sql(main_db, "insert into pkg_upgrade_table(patch_name) values('SMU-4')");
    EXPECT_EQ(clear(), 0);
    EXPECT_TRUE(exists("/opt/kept"));
    EXPECT_EQ(traced("trace", "select_clear_callback", "prepare delete file(/opt/gone)\n"), 1);
    EXPECT_EQ(traced("trace", "select_clear_callback", "prepare delete file()\n"), 3);
    EXPECT_TRUE(logged("CMPNT_ERROR", "get_path_exclude_file_name", "str is null.\n"));
}

TEST_F(ClearTest, TakesAPathWithoutADirectoryForTheDirectory) {
    const std::string home = "/opt/home";
    make_directories(home);
    ASSERT_EQ(chdir(home.c_str()), 0);
    write_file(home + "/bare", "file");
    write_file(home + "/bare.download", "stays");
    add("SMU-1", "bare");
    add("SMU-2", "bare.download");
    EXPECT_EQ(clear(), 0);
    EXPECT_FALSE(exists(home + "/bare"));
    EXPECT_TRUE(exists(home + "/bare.download"));
    ASSERT_EQ(chdir("/"), 0);
}

// A second slash leaves the directory what it is: protected, and never the root.
TEST_F(ClearTest, LooksThroughDoubledSlashes) {
    write_file("/opt/download/a", "stays");
    write_file("/opt/SMU-2/a", "goes");
    add("SMU-1", "/opt/download//a");
    add("SMU-2", "/opt/SMU-2///a");
    add("SMU-3", "//a");
    EXPECT_EQ(clear(), 0);
    EXPECT_TRUE(exists("/opt/download/a"));
    EXPECT_FALSE(exists("/opt/SMU-2"));
    EXPECT_EQ(traced("trace", "select_clear_callback", "prepare delete file(/opt/SMU-2)\n"), 1);
    EXPECT_EQ(traced("trace", "select_clear_callback", "prepare delete file(/)\n"), 0);
}

TEST_F(ClearTest, TakesThePathsThatJustFit) {
    const std::string fitting = "/opt/" + std::string(200, 'd') + "/" + std::string(53, 'f');
    ASSERT_EQ(fitting.size(), 259u);
    add_file("SMU-1", fitting);
    add_file("SMU-2", "/opt/" + std::string(200, 'e') + "/" + std::string(54, 'f'));
    EXPECT_EQ(clear(), 0);
    EXPECT_EQ(names_in("/opt"), (Texts{std::string(200, 'e')}));
}

// What is left of a cut path could name a directory that belongs to all.
TEST_F(ClearTest, LeavesAPathThatDoesNotFitAlone) {
    write_file("/opt/all/of/them", "stays");
    add("SMU-1", "/opt/all/" + std::string(260, 'd') + "/a");
    EXPECT_EQ(clear(), 0);
    EXPECT_TRUE(exists("/opt/all/of/them"));
    EXPECT_EQ(traced("error", "cmpnt_snprintf", "truncate occured\n"), 1);
    EXPECT_EQ(trace_messages().size(), 2u);
}

TEST_F(ClearTest, TakesHostileNamesForNames) {
    add_file("SMU-1", "/opt/$(touch x) ;* \"%s\n/a");
    write_file("/opt/other", "stays");
    EXPECT_EQ(clear(), 0);
    EXPECT_EQ(names_in("/opt"), (Texts{"other"}));
}

// Without the columns of an upgrade record a row reads as not current, with an empty path.
TEST_F(ClearTest, FindsNothingToRemoveInOtherTables) {
    ASSERT_EQ(cmpnt_create_pkg_table(CMPNT_PACKAGE_INFO_TABLE, CMPNT_DB_MAIN), 0);
    sql(main_db, "insert into package_info_table(package_name) values('a')");
    write_file("/opt/kept", "stays");
    EXPECT_EQ(clear(0, CMPNT_PACKAGE_INFO_TABLE), 0);
    EXPECT_EQ(traced("trace", "cmpnt_get_smu_name_and_path",
                     "read smu_name from db: smu_name(), path()\n"),
              1);
    EXPECT_TRUE(exists("/opt/kept"));
}

TEST_F(ClearTest, StopsAtANullRow) {
    FakeRow row({{"patch_name", "SMU-1"}});
    EXPECT_EQ(select_clear_callback(nullptr, 1, nullptr, row.names()), -1);
    EXPECT_EQ(select_clear_callback(nullptr, 1, row.values(), nullptr), -1);
    EXPECT_TRUE(trace_messages().empty());
}
