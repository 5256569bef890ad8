#include "tests/support/device_test.hh"
#include "tests/support/sqlite.hh"

class Backup : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        g_cmpnt_dbg_level = 0;  // the command's complaints go to the capture file
        make_directories("/data/cmpnt/opkg");
        write_file(main_db, "the main file");
    }
};

TEST_F(Backup, CopiesTheMainFileOverTheBackup) {
    write_file(backup_db, "an older and longer backup");
    EXPECT_EQ(cmpnt_backup_sqlite_db_to_data(), 0);
    EXPECT_EQ(read_file(backup_db), "the main file");
    EXPECT_EQ(read_file(main_db), "the main file");
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(Backup, NeedsTheMainFile) {
    g_cmpnt_dbg_level = 0xF;
    remove_tree(main_db);
    write_file(backup_db, "the last good copy");
    EXPECT_EQ(cmpnt_backup_sqlite_db_to_data(), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_backup_sqlite_db_to_data",
                       "sqlite db is no exist, path(/var/lib/opkg/cmpnt_upgrade.db3).\n"));
    EXPECT_EQ(read_file(backup_db), "the last good copy");
    EXPECT_EQ(fault::calls("popen"), 0);
}

TEST_F(Backup, ReportsAFailedCopy) {
    remove_tree("/data/cmpnt/opkg");
    EXPECT_EQ(cmpnt_backup_sqlite_db_to_data(), -1);
    EXPECT_EQ(traced("error", "cmpnt_backup_sqlite_db_to_data",
                     "cmpnt_popen_cmd_run fail, cmd(cp -rf), "
                     "buf(/var/lib/opkg/cmpnt_upgrade.db3 "
                     "/data/cmpnt/opkg/cmpnt_upgrade_backup.db3).\n"),
              1);
}

TEST_F(Backup, ReportsAShellThatCannotBeStarted) {
    g_cmpnt_dbg_level = 0xF;
    fault::fail("popen", 1, ENOMEM);
    EXPECT_EQ(cmpnt_backup_sqlite_db_to_data(), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_backup_sqlite_db_to_data",
                       "cmpnt_popen_cmd_run fail, cmd(cp -rf), "
                       "buf(/var/lib/opkg/cmpnt_upgrade.db3 "
                       "/data/cmpnt/opkg/cmpnt_upgrade_backup.db3).\n"));
}

TEST_F(Backup, TakesNoLock) {
    EXPECT_EQ(cmpnt_backup_sqlite_db_to_data(), 0);
    EXPECT_FALSE(exists("/tmp/.cmpnt_db_lock"));
}
