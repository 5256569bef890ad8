#include <fcntl.h>
#include <unistd.h>

#include "tests/support/child.hh"
#include "tests/support/device_test.hh"
#include "tests/support/sqlite.hh"
#include "tests/support/upgrade_records.hh"

namespace {

using Texts = std::vector<std::string>;

void insert(const std::string &file, const std::string &patch) {
    sql(file, "insert into pkg_upgrade_table(patch_name, pkg_name, cur_version) values('" + patch +
                  "', 'a', '1.0')");
}

int32_t load(int32_t db_type) {
    return traverse_pkg_info_table(CMPNT_PKG_UPGRADE_TABLE, CMPNT_ROWS_TO_UPGRADE_LIST, 0, db_type);
}

}  // namespace

class TraverseTest : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        for (const char *folder : {"/var/lib/opkg", "/data/cmpnt/opkg", "/tmp/opkg/server"}) {
            make_directories(folder);
        }
    }

    void make_table(int32_t db_type = CMPNT_DB_MAIN) {
        ASSERT_EQ(cmpnt_create_pkg_table(CMPNT_PKG_UPGRADE_TABLE, db_type), 0);
        fault::reset();
    }
};

TEST_F(TraverseTest, ReadsTheFileThatTheSelectorNames) {
    struct Case {
        int32_t db_type;
        const std::string &file;
    };
    for (const Case &c :
         {Case{0, main_db}, Case{1, server_db}, Case{2, backup_db}, Case{3, auto_sync_db}}) {
        make_table(c.db_type);
        insert(c.file, "SMU-" + std::to_string(c.db_type));
    }
    for (int32_t db_type : {0, 1, 2, 3, 7, -1}) {
        recycle_upgrade_list(CMPNT_UPGRADE_LIST);
        EXPECT_EQ(load(db_type), 0);
        const int32_t file = db_type < 0 || db_type > 3 ? 0 : db_type;
        EXPECT_EQ(records_of(cmpnt_upgrade_list),
                  (Texts{"SMU-" + std::to_string(file) + " a 1.0"}));
    }
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(TraverseTest, FollowsTheTemporaryDirectory) {
    make_directories("/opt/t/opkg/server");
    setenv("TMPDIR", "/opt/t", 1);
    make_table(CMPNT_DB_SERVER);
    insert("/opt/t/opkg/server/.cmpnt_server.db3", "SMU-1");
    EXPECT_EQ(load(CMPNT_DB_SERVER), 0);
    EXPECT_EQ(records_of(cmpnt_upgrade_list), (Texts{"SMU-1 a 1.0"}));
}

TEST_F(TraverseTest, TakesAMissingFileForNothingToRead) {
    const cmpnt_upgrade_value record = upgrade_record("SMU-1", "a");
    ASSERT_EQ(insert_cmpnt_upgrade_db_to_list(&record, CMPNT_UPGRADE_LIST), 0);
    const std::string lock = "/tmp/.cmpnt_db_lock";
    for (int32_t db_type : {0, 1, 2, 3, 9}) {
        forget_log();
        EXPECT_EQ(load(db_type), 0);
        EXPECT_TRUE(logged("CMPNT_TRACE", "traverse_pkg_info_table",
                           "sqlite database is not exist, delay traversal.\n"));
        EXPECT_EQ(trace_lines().size(), 1u);
    }
    for (const std::string &file : {main_db, server_db, backup_db, auto_sync_db, lock}) {
        EXPECT_FALSE(exists(file)) << file;
    }
    EXPECT_EQ(records_of(cmpnt_upgrade_list), (Texts{"SMU-1 a 1.0"}));
}

TEST_F(TraverseTest, FailsWithoutRoomForTheServersPath) {
    setenv("TMPDIR", ("/" + std::string(250, 't')).c_str(), 1);
    EXPECT_EQ(load(CMPNT_DB_SERVER), -1);
    EXPECT_TRUE(
        logged("CMPNT_ERROR", "traverse_pkg_info_table", "cmpnt_strcat_tmp_and_name fail\n"));
    EXPECT_EQ(fault::calls("sqlite3_open"), 0);
}

TEST_F(TraverseTest, FailsWithoutTheLock) {
    make_table();
    unlink("/tmp/.cmpnt_db_lock");
    make_directories("/tmp/.cmpnt_db_lock");
    EXPECT_EQ(load(CMPNT_DB_MAIN), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "traverse_pkg_info_table", "open db flock fail.\n"));
    EXPECT_EQ(fault::calls("sqlite3_open"), 0);
}

TEST_F(TraverseTest, FailsWhereTheFileCannotBeOpened) {
    make_directories(main_db);
    EXPECT_EQ(load(CMPNT_DB_MAIN), -1);
    EXPECT_TRUE(
        logged("CMPNT_ERROR", "traverse_pkg_info_table", "cmpnt_open_sqlite fail ret(-1)\n"));
    EXPECT_EQ(fault::calls("sqlite3_exec"), 0);
}

TEST_F(TraverseTest, FailsForAMissingTableAndClosesAllTheSame) {
    write_file(main_db, "");
    const int before = open_descriptors();
    EXPECT_EQ(load(CMPNT_DB_MAIN), -1);
    EXPECT_EQ(trace_messages(),
              (Texts{"error select_pkg_info_table: sqlite error: no such table: "
                     "pkg_upgrade_table\n",
                     "error traverse_pkg_info_table: select pkg info table fail.\n"}));
    EXPECT_TRUE(logged("CMPNT_ERROR", "traverse_pkg_info_table", "select pkg info table fail.\n"));
    EXPECT_EQ(fault::calls("sqlite3_close"), 1);
    EXPECT_EQ(open_descriptors(), before);
}

TEST_F(TraverseTest, FailsForAFileThatIsNoDatabase) {
    write_file(main_db, std::string(4096, 'x'));
    EXPECT_EQ(load(CMPNT_DB_MAIN), -1);
    EXPECT_TRUE(
        logged("CMPNT_ERROR", "select_pkg_info_table", "sqlite error: file is not a database\n"));
}

TEST_F(TraverseTest, FailsWhenTheCloseFails) {
    make_table();
    fault::fail("sqlite3_close", 1, 0);
    EXPECT_EQ(load(CMPNT_DB_MAIN), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "traverse_pkg_info_table", "sqlite close fail ret(5).\n"));
    EXPECT_EQ(trace_lines().size(), 1u);
}

TEST_F(TraverseTest, LoadsWhatTheModeNamesFromARealFile) {
    make_table();
    sql(main_db,
        "insert into pkg_upgrade_table(patch_name, pkg_name, cur_version, card_id, patch_type) "
        "values('SMU-1.bin', 'a', '1.0', 1, 0), ('SMU-1.bin', 'b', '1.0', 1, 1), "
        "('SMU-1.bin', 'c', '1.0', 1, 1), ('SMU-2.deb', 'a', '2.0', 2, 1)");
    write_file("/data/cmpnt/opkg/download/SMU-1.bin.single/a.deb", "x");
    write_file("/data/cmpnt/opkg/download/SMU-2.deb.new/stray.txt", "x");
    struct {
        int32_t mode;
        Texts upgrades, syncs;
    } const cases[] = {
        {CMPNT_ROWS_BY_SMU, {"SMU-1.bin a 1.0", "SMU-2.deb a 2.0"}, {}},
        {CMPNT_ROWS_SINGLE_PATCHES, {"SMU-1.bin b 1.0", "SMU-2.deb a 2.0"}, {}},
        {CMPNT_ROWS_TO_AUTO_SYNC, {}, {"SMU-1.bin a 1.0"}},
    };
    const int before = open_descriptors();
    for (const auto &test : cases) {
        recycle_upgrade_list(CMPNT_UPGRADE_LIST);
        EXPECT_EQ(traverse_pkg_info_table(CMPNT_PKG_UPGRADE_TABLE, test.mode, 0, CMPNT_DB_MAIN), 0);
        EXPECT_EQ(records_of(cmpnt_upgrade_list), test.upgrades) << test.mode;
        EXPECT_EQ(records_of(auto_sync_list), test.syncs) << test.mode;
    }
    EXPECT_EQ(open_descriptors(), before);
    EXPECT_TRUE(names_in("/data/cmpnt/opkg/download/SMU-2.deb.new").empty());
}

TEST_F(TraverseTest, OpensAndClosesForAModeThatDoesNothing) {
    make_table();
    EXPECT_EQ(
        traverse_pkg_info_table(CMPNT_PKG_UPGRADE_TABLE, CMPNT_ROWS_NOTHING, 0, CMPNT_DB_MAIN), 0);
    EXPECT_EQ(fault::calls("sqlite3_open"), 1);
    EXPECT_EQ(fault::calls("sqlite3_exec"), 0);
    EXPECT_EQ(fault::calls("sqlite3_close"), 1);
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(TraverseTest, HoldsTheLockWhileRowsAreReadAndReleasesIt) {
    make_table();
    insert(main_db, "SMU-1");
    // The display of a row: whether another process would get the lock just then.
    static bool was_locked;
    was_locked = false;
    platform.on_syslog = [] {
        Child other([](Child &) {
            const int fd = open("/tmp/.cmpnt_db_lock", O_RDWR);
            struct flock lock = {};
            lock.l_type = F_WRLCK;
            return fd < 0 ? 2 : fcntl(fd, F_SETLK, &lock) == 0 ? 0 : 1;
        });
        was_locked = other.wait() == 1;
    };
    insert(main_db, "SMU-1");  // a duplicate, which is logged
    EXPECT_EQ(load(CMPNT_DB_MAIN), 0);
    EXPECT_TRUE(was_locked);
    platform.on_syslog();
    EXPECT_FALSE(was_locked);
}

TEST_F(TraverseTest, WaitsForTheLockOfAnotherProcess) {
    make_table();
    insert(main_db, "SMU-1");
    Child holder([](Child &self) {
        const int32_t lock = cmpnt_open_db_flock();
        self.say();
        self.wait_for_word();
        return cmpnt_close(lock);
    });
    ASSERT_TRUE(holder.says());
    Child loader([](Child &self) {
        self.say();
        const int32_t result = load(CMPNT_DB_MAIN);
        self.say();
        return result;
    });
    ASSERT_TRUE(loader.says());
    EXPECT_FALSE(loader.says(100));
    holder.tell();
    EXPECT_TRUE(loader.says());
    EXPECT_EQ(loader.wait(), 0);
}

TEST_F(TraverseTest, HotPatchListTakesEveryRowOfTheMainFile) {
    make_table();
    insert(main_db, "SMU-1");
    insert(main_db, "SMU-2");
    EXPECT_EQ(cmpnt_get_database_hp_list(), 0);
    EXPECT_EQ(records_of(cmpnt_hp_list), (Texts{"SMU-1 a 1.0", "SMU-2 a 1.0"}));
    EXPECT_TRUE(records_of(cmpnt_upgrade_list).empty());
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(TraverseTest, HotPatchListFailsWithTheTraversal) {
    write_file(main_db, "");
    EXPECT_EQ(cmpnt_get_database_hp_list(), -1);
    EXPECT_TRUE(
        logged("CMPNT_ERROR", "cmpnt_get_database_hp_list", "traverse_pkg_info_table fail.\n"));
}

TEST_F(TraverseTest, HotPatchListStaysAsItIsWithoutAFile) {
    EXPECT_EQ(cmpnt_get_database_hp_list(), 0);
    EXPECT_TRUE(records_of(cmpnt_hp_list).empty());
}
