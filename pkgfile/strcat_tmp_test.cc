#include <stdlib.h>

#include "tests/support/device_test.hh"

class StrcatTmp : public DeviceTest {
protected:
    char path[16] = "before";
};

TEST_F(StrcatTmp, AppendsTheNameToTheDirectoryDirectly) {
    memset(path, 'x', sizeof(path));
    EXPECT_EQ(cmpnt_strcat_tmp_and_name("/name", path, sizeof(path)), 0);
    EXPECT_EQ(std::string(path, sizeof(path)), "/tmp/name" + std::string(7, '\0'));
    EXPECT_EQ(cmpnt_strcat_tmp_and_name("name", path, sizeof(path)), 0);
    EXPECT_STREQ(path, "/tmpname");
    setenv("TMPDIR", "/data/", 1);
    EXPECT_EQ(cmpnt_strcat_tmp_and_name("name", path, sizeof(path)), 0);
    EXPECT_STREQ(path, "/data/name");
    EXPECT_EQ(cmpnt_strcat_tmp_and_name("", path, sizeof(path)), 0);
    EXPECT_STREQ(path, "/data/");
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(StrcatTmp, RefusesANameThatLeavesNoRoomForTheTerminator) {
    EXPECT_EQ(cmpnt_strcat_tmp_and_name("/0123456789", path, sizeof(path)), 0);
    EXPECT_STREQ(path, "/tmp/0123456789");
    EXPECT_EQ(cmpnt_strcat_tmp_and_name("/0123456789a", path, sizeof(path)), -1);
    EXPECT_STREQ(path, "/tmp");
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_strcat_tmp_and_name",
                       "path(/tmp) and name(/0123456789a) len >= 16\n"));
}

TEST_F(StrcatTmp, RefusesABufferTooSmallForTheDirectory) {
    for (const int32_t size : {4, 1, 0, -1}) {
        forget_log();
        EXPECT_EQ(cmpnt_strcat_tmp_and_name("/x", path, size), -1) << size;
        EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_strcat_tmp_and_name", "cmpnt_get_tmpdir fail.\n"));
    }
}

TEST_F(StrcatTmp, ZeroesTheBufferFirst) {
    EXPECT_EQ(cmpnt_strcat_tmp_and_name("/x", path, 4), -1);
    EXPECT_EQ(std::string(path, 6), std::string("\0\0\0\0re", 6));
}

TEST_F(StrcatTmp, RefusesNull) {
    EXPECT_EQ(cmpnt_strcat_tmp_and_name(nullptr, path, sizeof(path)), -1);
    EXPECT_STREQ(path, "before");
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_strcat_tmp_and_name", "param is null\n"));
    EXPECT_EQ(cmpnt_strcat_tmp_and_name("/x", nullptr, 16), -1);
    EXPECT_EQ(traced("error", "cmpnt_strcat_tmp_and_name", "param is null\n"), 2);
}
