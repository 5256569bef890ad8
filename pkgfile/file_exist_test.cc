#include <unistd.h>

#include "tests/support/device_test.hh"

class FileExist : public DeviceTest {};

TEST_F(FileExist, KnowsWhateverHasTheName) {
    write_file("/tmp/file", "");
    ASSERT_EQ(symlink("/tmp/nowhere", "/tmp/dangling"), 0);
    EXPECT_EQ(file_is_exist("/tmp/file"), 1);
    EXPECT_EQ(file_is_exist("/tmp"), 1);
    EXPECT_EQ(file_is_exist("/tmp/dangling"), 1);
    EXPECT_EQ(file_is_exist("/tmp/nowhere"), 0);
    EXPECT_EQ(file_is_exist("/tmp/file/below"), 0);
    EXPECT_EQ(file_is_exist(""), 0);
    EXPECT_EQ(file_is_exist(("/tmp/" + std::string(5000, 'x')).c_str()), 0);
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(FileExist, IsNotWhatLstatRefuses) {
    write_file("/tmp/file", "");
    fault::fail("lstat64", 1, EACCES);
    EXPECT_EQ(file_is_exist("/tmp/file"), 0);
}

TEST_F(FileExist, RefusesNull) {
    EXPECT_EQ(file_is_exist(nullptr), 0);
    EXPECT_TRUE(logged("CMPNT_ERROR", "file_is_exist", "param is null.\n"));
}
