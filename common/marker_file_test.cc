#include <errno.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/deadline.hh"
#include "tests/support/device_test.hh"

class MarkerFile : public DeviceTest {};

TEST_F(MarkerFile, TouchCreatesAFileForEveryone) {
    umask(0);
    EXPECT_EQ(cmpnt_touch_tmp_file("/.marker"), 0);
    EXPECT_EQ(size_of("/tmp/.marker"), 0);
    EXPECT_EQ(mode_of("/tmp/.marker"), 0777);
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(MarkerFile, TouchKeepsWhatIsThere) {
    write_file("/tmp/.marker", "value\n");
    EXPECT_EQ(cmpnt_touch_tmp_file("/.marker"), 0);
    EXPECT_EQ(read_file("/tmp/.marker"), "value\n");
}

TEST_F(MarkerFile, LiesInTheTemporaryDirectoryWithNothingBetween) {
    make_directories("/data/tmp");
    setenv("TMPDIR", "/data/tmp", 1);
    EXPECT_EQ(cmpnt_touch_tmp_file("/a"), 0);
    EXPECT_EQ(cmpnt_touch_tmp_file("b"), 0);
    EXPECT_TRUE(exists("/data/tmp/a"));
    EXPECT_TRUE(exists("/data/tmpb"));
}

TEST_F(MarkerFile, TouchTellsTheNameThatCannotBeOpened) {
    EXPECT_EQ(cmpnt_touch_tmp_file("/no/such/directory"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_touch_tmp_file",
                       "open tmp file(/no/such/directory) fail, error(No such file or "
                       "directory).\n"));
}

TEST_F(MarkerFile, TouchLeavesNoDescriptorOpen) {
    const int before = open_descriptors();
    EXPECT_EQ(cmpnt_touch_tmp_file("/.marker"), 0);
    EXPECT_EQ(open_descriptors(), before);
}

TEST_F(MarkerFile, RmRemovesFilesAndDirectories) {
    write_file("/tmp/.marker", "x");
    write_file("/tmp/folder/file", "x");
    EXPECT_EQ(cmpnt_rm_file("/.marker"), 0);
    EXPECT_EQ(cmpnt_rm_file("/folder"), 0);
    EXPECT_EQ(cmpnt_rm_file("/never/there"), 0);
    EXPECT_FALSE(exists("/tmp/.marker"));
    EXPECT_FALSE(exists("/tmp/folder"));
}

TEST_F(MarkerFile, RmIgnoresAFailedRemoval) {
    write_file("/tmp/.marker", "x");
    fault::fail("popen", 1, EAGAIN);
    EXPECT_EQ(cmpnt_rm_file("/.marker"), 0);
    EXPECT_TRUE(exists("/tmp/.marker"));
}

TEST_F(MarkerFile, RmDoesNotRunForTheRootOrForNothing) {
    setenv("TMPDIR", "", 1);
    for (const char *name : {"", "/", "//"}) {
        EXPECT_EQ(cmpnt_rm_file(name), -1) << name;
    }
    EXPECT_EQ(fault::calls("popen"), 0);
}

TEST_F(MarkerFile, TouchAndRmSayInTheirOwnNameWhatIsWrongWithThePath) {
    const struct {
        const char *function;
        int32_t (*call)(const char *name);
    } cases[] = {{"cmpnt_touch_tmp_file", cmpnt_touch_tmp_file}, {"cmpnt_rm_file", cmpnt_rm_file}};
    const std::string fits(255, 'n');
    const std::string name = "/" + fits;  // with "/tmp" 260 characters
    for (const auto &c : cases) {
        EXPECT_EQ(c.call(nullptr), -1);
        EXPECT_TRUE(logged("CMPNT_ERROR", c.function, "param is null.\n"));

        EXPECT_EQ(c.call(name.c_str()), -1);
        EXPECT_TRUE(
            logged("CMPNT_ERROR", c.function, "path(/tmp) and file(" + name + ") len >= 260\n"));
        EXPECT_EQ(c.call(name.substr(0, 255).c_str()), 0) << "259 characters";

        setenv("TMPDIR", std::string(260, 'd').c_str(), 1);
        EXPECT_EQ(c.call("/name"), -1);
        EXPECT_TRUE(logged("CMPNT_ERROR", c.function, "cmpnt_get_tmpdir fail.\n"));
        unsetenv("TMPDIR");
    }
}

TEST_F(MarkerFile, InfoIsTheFirstLine) {
    write_file("/tmp/.marker", "value\nsecond line\n");
    char value[16];
    memset(value, 'x', sizeof(value));
    EXPECT_EQ(cmpnt_get_info_from_tmp_file("/.marker", value, sizeof(value)), 0);
    EXPECT_STREQ(value, "value");
    EXPECT_EQ(value[15], '\0') << "zeroed first";
}

TEST_F(MarkerFile, InfoOfAMissingFileZeroesTheBuffer) {
    char value[16];
    memset(value, 'x', sizeof(value));
    EXPECT_EQ(cmpnt_get_info_from_tmp_file("/.marker", value, sizeof(value)), -1);
    EXPECT_TRUE(
        logged("CMPNT_ERROR", "cmpnt_get_info_from_tmp_file", "cmpnt_get_value_from_file fail\n"));
    EXPECT_EQ(cmpnt_name_is_null(value, sizeof(value)), 1);
}

TEST_F(MarkerFile, InfoHasOneTextForNullAndForALongName) {
    char value[16] = "kept";
    const std::string long_name(300, 'n');
    const struct {
        const char *name;
        char *value;
    } cases[] = {
        {nullptr, value}, {"/.marker", nullptr}, {nullptr, nullptr}, {long_name.c_str(), value}};
    for (const auto &c : cases) {
        forget_log();
        EXPECT_EQ(cmpnt_get_info_from_tmp_file(c.name, c.value, sizeof(value)), -1);
        EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_get_info_from_tmp_file",
                           "cmpnt_get_tmp_strcat_path fail\n"));
        EXPECT_EQ(traced("error", "cmpnt_get_info_from_tmp_file", "param is null.\n"), 0);
        if (c.name == nullptr) {
            EXPECT_STREQ(value, "kept");
            EXPECT_EQ(trace_lines().size(), 1u);
        }
    }
}

TEST_F(MarkerFile, InfoZeroesTheBufferBeforeItLooksAtTheLengthOfTheName) {
    char value[16] = "former";
    EXPECT_EQ(cmpnt_get_info_from_tmp_file(std::string(300, 'n').c_str(), value, sizeof(value)),
              -1);
    EXPECT_STREQ(value, "");
}

TEST_F(MarkerFile, InfoDoesNotWaitForTheWriterOfAPipe) {
    ASSERT_EQ(mkfifo("/tmp/.marker", 0600), 0);
    char value[16] = "former";
    const Deadline deadline;
    EXPECT_EQ(cmpnt_get_info_from_tmp_file("/.marker", value, sizeof(value)), -1);
    EXPECT_STREQ(value, "");
}

TEST_F(MarkerFile, InfoTouchesNoByteOutsideItsBuffer) {
    write_file("/tmp/.marker", "value\n");
    char value[8] = "kept";
    for (int32_t size : {0, -1, INT32_MIN}) {
        EXPECT_EQ(cmpnt_get_info_from_tmp_file("/.marker", value, size), -1) << size;
        EXPECT_STREQ(value, "kept");
    }
    EXPECT_TRUE(
        logged("CMPNT_ERROR", "cmpnt_get_info_from_tmp_file", "cmpnt_get_value_from_file fail\n"));
}
