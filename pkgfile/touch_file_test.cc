#include <errno.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/device_test.hh"

class TouchFile : public DeviceTest {};

TEST_F(TouchFile, CreatesAnEmptyFileWithItsDirectories) {
    umask(0);
    const int before = open_descriptors();
    EXPECT_EQ(cmpnt_touch_file("/data/a/b/file"), 0);
    EXPECT_EQ(size_of("/data/a/b/file"), 0);
    EXPECT_EQ(mode_of("/data/a/b/file"), 0755);
    EXPECT_EQ(fault::calls("fsync"), 1);
    EXPECT_EQ(open_descriptors(), before);
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(TouchFile, LeavesWhatIsThereAlone) {
    write_file("/data/file", "text");
    EXPECT_EQ(cmpnt_touch_file("/data/file"), 0);
    EXPECT_EQ(read_file("/data/file"), "text");
    EXPECT_EQ(cmpnt_touch_file("/data"), 0);
}

TEST_F(TouchFile, DoesNotCreateWhatADanglingLinkNames) {
    ASSERT_EQ(symlink("/data/nowhere", "/data/link"), 0);
    EXPECT_EQ(cmpnt_touch_file("/data/link"), 0);
    EXPECT_FALSE(exists("/data/nowhere"));
}

TEST_F(TouchFile, RefusesNull) {
    EXPECT_EQ(cmpnt_touch_file(nullptr), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_touch_file", "param error\n"));
}

TEST_F(TouchFile, TellsWhyTheFileCannotBeCreated) {
    write_file("/data/plain", "");
    EXPECT_EQ(cmpnt_touch_file("/data/plain/file"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_touch_file",
                       "open file(/data/plain/file) fail, error(Not a directory).\n"));
}

TEST_F(TouchFile, SucceedsWithoutASync) {
    fault::fail("fsync", 1, EIO);
    EXPECT_EQ(cmpnt_touch_file("/data/file"), 0);
    EXPECT_TRUE(exists("/data/file"));
}

TEST_F(TouchFile, MakesADirectoryOfAPathWithoutADirectoryPart) {
    ASSERT_EQ(chdir("/data"), 0);
    EXPECT_EQ(cmpnt_touch_file("bare"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_touch_file",
                       "open file(bare) fail, error(Is a directory).\n"));
    EXPECT_EQ(is_dir("/data/bare"), 1);
    ASSERT_EQ(chdir("/"), 0);
}

class TmpFileIsExist : public DeviceTest {};

TEST_F(TmpFileIsExist, LooksInTheTemporaryDirectory) {
    write_file("/tmp/.marker", "");
    write_file("/data/other", "");
    EXPECT_EQ(cmpnt_tmp_file_is_exist("/.marker"), 1);
    EXPECT_EQ(cmpnt_tmp_file_is_exist("/other"), 0);
    setenv("TMPDIR", "/data", 1);
    EXPECT_EQ(cmpnt_tmp_file_is_exist("/.marker"), 0);
    EXPECT_EQ(cmpnt_tmp_file_is_exist("/other"), 1);
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(TmpFileIsExist, SaysNoToNullAndToLongNames) {
    EXPECT_EQ(cmpnt_tmp_file_is_exist(nullptr), 0);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_tmp_file_is_exist", "param is null\n"));
    EXPECT_EQ(cmpnt_tmp_file_is_exist(("/" + std::string(255, 'n')).c_str()), 0);
    EXPECT_TRUE(
        logged("CMPNT_ERROR", "cmpnt_tmp_file_is_exist", "cmpnt_get_tmp_strcat_path fail\n"));
}
