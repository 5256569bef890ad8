#include <unistd.h>

#include "tests/support/device_test.hh"

class RenameTest : public DeviceTest {};

TEST_F(RenameTest, MovesAndReplaces) {
    write_file("/tmp/old", "text");
    write_file("/tmp/new", "in the way");
    EXPECT_EQ(cmpnt_rename("/tmp/old", "/tmp/new"), 0);
    EXPECT_EQ(read_file("/tmp/new"), "text");
    EXPECT_FALSE(exists("/tmp/old"));
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(RenameTest, MovesADanglingLink) {
    ASSERT_EQ(symlink("/tmp/nowhere", "/tmp/old"), 0);
    EXPECT_EQ(cmpnt_rename("/tmp/old", "/tmp/new"), 0);
    EXPECT_TRUE(exists("/tmp/new"));
}

TEST_F(RenameTest, OfAMissingSourceIsNotTried) {
    EXPECT_EQ(cmpnt_rename("/tmp/missing", "/tmp/new"), -1);
    EXPECT_TRUE(
        logged("CMPNT_ERROR", "cmpnt_rename", "[rename] the src(/tmp/missing) is not exist\n"));
    EXPECT_EQ(fault::calls("rename"), 0);
}

TEST_F(RenameTest, ReportsItsFailureAndKeepsTheSource) {
    write_file("/tmp/old", "text");
    EXPECT_EQ(cmpnt_rename("/tmp/old", "/tmp/missing/new"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_rename",
                       "rename error, src(/tmp/old), dest(/tmp/missing/new), errno(2)\n"));
    EXPECT_EQ(read_file("/tmp/old"), "text");
}

TEST_F(RenameTest, RefusesNull) {
    EXPECT_EQ(cmpnt_rename(nullptr, "/tmp/new"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_rename", "param is null\n"));
    EXPECT_EQ(cmpnt_rename("/tmp/old", nullptr), -1);
    EXPECT_EQ(traced("error", "cmpnt_rename", "param is null\n"), 2);
}
