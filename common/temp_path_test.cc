#include <limits.h>

#include "tests/support/device_test.hh"

class TempPath : public DeviceTest {
protected:
    static constexpr int32_t size = CMPNT_PATH_SIZE;
    char dest[size];

    void SetUp() override {
        DeviceTest::SetUp();
        clear();
    }
    void TearDown() override {
        unsetenv("TMPDIR");
        DeviceTest::TearDown();
    }
    void clear() { memset(dest, '#', sizeof(dest)); }
    bool is_untouched() { return std::string(dest, size) == std::string(size, '#'); }
};

TEST_F(TempPath, IsTmpByDefault) {
    EXPECT_EQ(cmpnt_get_tmpdir(dest, size), dest);
    EXPECT_EQ(std::string(dest, size), "/tmp" + std::string(size - 4, '\0'));
}

TEST_F(TempPath, FollowsTheEnvironmentAsItIs) {
    for (const char *directory : {"/data/tmp", "/data/tmp/", "relative", ""}) {
        setenv("TMPDIR", directory, 1);
        EXPECT_EQ(cmpnt_get_tmpdir(dest, size), dest);
        EXPECT_STREQ(dest, directory);
    }
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(TempPath, FitsWithItsTerminatorOrNotAtAll) {
    setenv("TMPDIR", std::string(9, 'd').c_str(), 1);
    EXPECT_EQ(cmpnt_get_tmpdir(dest, 10), dest);
    EXPECT_STREQ(dest, "ddddddddd");
    EXPECT_EQ(dest[10], '#');

    setenv("TMPDIR", std::string(10, 'd').c_str(), 1);
    clear();
    EXPECT_EQ(cmpnt_get_tmpdir(dest, 10), nullptr);
    EXPECT_TRUE(is_untouched());
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_get_tmpdir", "path(dddddddddd) length >= 10!\n"));
}

TEST_F(TempPath, FitsIntoNoBufferWithoutSize) {
    for (int32_t bad : {0, -1, INT_MIN}) {
        forget_log();
        EXPECT_EQ(cmpnt_get_tmpdir(dest, bad), nullptr);
        EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_get_tmpdir",
                           "path(/tmp) length >= " + std::to_string(bad) + "!\n"));
    }
    setenv("TMPDIR", "", 1);
    EXPECT_EQ(cmpnt_get_tmpdir(dest, 0), nullptr);
    EXPECT_TRUE(is_untouched());
    EXPECT_EQ(cmpnt_get_tmpdir(dest, 1), dest) << "an empty directory needs its terminator";
    EXPECT_STREQ(dest, "");
}

TEST_F(TempPath, HasNowhereToGoQuietly) {
    EXPECT_EQ(cmpnt_get_tmpdir(nullptr, size), nullptr);
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(TempPath, TakesANameWithoutASeparator) {
    EXPECT_EQ(cmpnt_get_tmp_strcat_path("/.lock", dest, size), 0);
    EXPECT_EQ(std::string(dest, size), "/tmp/.lock" + std::string(size - 10, '\0'));
    EXPECT_EQ(cmpnt_get_tmp_strcat_path("name", dest, size), 0);
    EXPECT_STREQ(dest, "/tmpname");
    EXPECT_EQ(cmpnt_get_tmp_strcat_path("", dest, size), 0);
    EXPECT_STREQ(dest, "/tmp");
    setenv("TMPDIR", "", 1);
    EXPECT_EQ(cmpnt_get_tmp_strcat_path("/name", dest, size), 0);
    EXPECT_STREQ(dest, "/name");
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(TempPath, KeepsTheDirectoryAloneWhenTheNameDoesNotFit) {
    EXPECT_EQ(cmpnt_get_tmp_strcat_path("/name", dest, 10), 0);
    EXPECT_STREQ(dest, "/tmp/name");
    EXPECT_EQ(dest[10], '#');

    EXPECT_EQ(cmpnt_get_tmp_strcat_path("/names", dest, 10), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_get_tmp_strcat_path",
                       "path(/tmp) and file(/names) len >= 10\n"));
    EXPECT_STREQ(dest, "/tmp");
    EXPECT_EQ(dest[10], '#');
}

TEST_F(TempPath, KeepsTheBufferWhenNotEvenTheDirectoryFits) {
    EXPECT_EQ(cmpnt_get_tmp_strcat_path("/name", dest, 4), -1);
    EXPECT_TRUE(is_untouched());
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_get_tmp_strcat_path", "cmpnt_get_tmpdir fail.\n"));
    EXPECT_EQ(trace_messages(), (std::vector<std::string>{
                                    "error cmpnt_get_tmpdir: path(/tmp) length >= 4!\n",
                                    "error cmpnt_get_tmp_strcat_path: cmpnt_get_tmpdir fail.\n"}));
    EXPECT_EQ(cmpnt_get_tmp_strcat_path("/name", dest, -5), -1);
    EXPECT_TRUE(is_untouched());
}

TEST_F(TempPath, RefusesNull) {
    EXPECT_EQ(cmpnt_get_tmp_strcat_path(nullptr, dest, size), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_get_tmp_strcat_path", "param is null.\n"));
    forget_log();
    EXPECT_EQ(cmpnt_get_tmp_strcat_path("/name", nullptr, size), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_get_tmp_strcat_path", "param is null.\n"));
    EXPECT_TRUE(is_untouched());
}
