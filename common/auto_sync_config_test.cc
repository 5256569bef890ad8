#include <errno.h>

#include "tests/support/device_test.hh"

class AutoSyncConfig : public DeviceTest {};

TEST_F(AutoSyncConfig, ReplacesTheFile) {
    EXPECT_EQ(cmpnt_write_auto_sync_config("first", "/data/sync/config"), 0);
    EXPECT_EQ(read_file("/data/sync/config"), "first\n");
    EXPECT_EQ(cmpnt_write_auto_sync_config("second", "/data/sync/config"), 0);
    EXPECT_EQ(read_file("/data/sync/config"), "second\n");
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(AutoSyncConfig, ReplacesADirectoryToo) {
    write_file("/data/config/file", "x");
    EXPECT_EQ(cmpnt_write_auto_sync_config("text", "/data/config"), 0);
    EXPECT_EQ(read_file("/data/config"), "text\n");
}

TEST_F(AutoSyncConfig, AppendsWhenTheOldFileCannotBeRemoved) {
    write_file("/data/config", "old\n");
    fault::fail("popen", 1, EAGAIN);
    EXPECT_EQ(cmpnt_write_auto_sync_config("new", "/data/config"), 0);
    EXPECT_EQ(read_file("/data/config"), "old\nnew\n");
}

TEST_F(AutoSyncConfig, RefusesNull) {
    EXPECT_EQ(cmpnt_write_auto_sync_config(nullptr, "/data/config"), -1);
    EXPECT_EQ(cmpnt_write_auto_sync_config("text", nullptr), -1);
    EXPECT_TRUE(logged("CLIENT_ERROR", "cmpnt_write_auto_sync_config", "param is error\n"));
    EXPECT_EQ(traced("error", "cmpnt_write_auto_sync_config", "param is error\n"), 2);
    EXPECT_EQ(fault::calls("popen"), 0);
}

TEST_F(AutoSyncConfig, TellsTheFileThatCannotBeWritten) {
    write_file("/data/plain", "");
    EXPECT_EQ(cmpnt_write_auto_sync_config("text", "/data/plain/config"), -1);
    EXPECT_TRUE(logged("CLIENT_ERROR", "cmpnt_write_auto_sync_config",
                       "write fail, file_name(/data/plain/config), config(text).\n"));
}
