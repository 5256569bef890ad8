#include <string.h>

#include "tests/support/device_test.hh"

class DestPath : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        memset(dst, 'x', sizeof(dst));
    }

    // Whether nothing follows the text in the 260 bytes, and nothing was written behind them.
    bool is_zero_behind_text() const {
        for (size_t i = strlen(dst); i < CMPNT_PATH_SIZE; i++) {
            if (dst[i] != '\0') {
                return false;
            }
        }
        return dst[CMPNT_PATH_SIZE] == 'x';
    }

    char dst[CMPNT_PATH_SIZE + 1];
};

TEST_F(DestPath, EndsInTheSuffixOfTheType) {
    struct {
        uint32_t type;
        const char *expected;
    } const cases[] = {{CMPNT_PKG_TYPE_IMAGE, "/d/a.bin.single"},
                       {CMPNT_PKG_TYPE_MULTIPLE, "/d/a.bin.multiple"},
                       {CMPNT_PKG_TYPE_DEB, "/d/a.bin.new"}};
    for (const auto &test : cases) {
        memset(dst, 'x', sizeof(dst));
        EXPECT_EQ(cmpnt_get_dest_path("/d/a.bin", dst, test.type), 0);
        EXPECT_STREQ(dst, test.expected);
        EXPECT_TRUE(is_zero_behind_text());
    }
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(DestPath, IsEmptyForAnotherType) {
    for (const uint32_t type : {0u, 4u, 5u, 257u, UINT32_MAX}) {
        memset(dst, 'x', sizeof(dst));
        EXPECT_EQ(cmpnt_get_dest_path("/d/a.bin", dst, type), -1);
        EXPECT_STREQ(dst, "");
        EXPECT_TRUE(is_zero_behind_text());
    }
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(DestPath, OfTheEmptyTextIsTheSuffix) {
    EXPECT_EQ(cmpnt_get_dest_path("", dst, CMPNT_PKG_TYPE_DEB), 0);
    EXPECT_STREQ(dst, ".new");
}

TEST_F(DestPath, IsCutToThePath) {
    const std::string base(255, 'b');
    EXPECT_EQ(cmpnt_get_dest_path(base.c_str(), dst, CMPNT_PKG_TYPE_DEB), 0);
    EXPECT_EQ(dst, base + ".new");
    EXPECT_EQ(cmpnt_get_dest_path(base.c_str(), dst, CMPNT_PKG_TYPE_IMAGE), 0);
    EXPECT_EQ(dst, base + ".sin");
    EXPECT_EQ(cmpnt_get_dest_path(std::string(5000, 'b').c_str(), dst, CMPNT_PKG_TYPE_IMAGE), 0);
    EXPECT_EQ(dst, std::string(259, 'b'));
    EXPECT_TRUE(is_zero_behind_text());
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(DestPath, MayReplaceItsBase) {
    strcpy(dst, "/d/a.bin");
    EXPECT_EQ(cmpnt_get_dest_path(dst, dst, CMPNT_PKG_TYPE_IMAGE), 0);
    EXPECT_STREQ(dst, "/d/a.bin.single");
}

TEST_F(DestPath, RefusesNull) {
    EXPECT_EQ(cmpnt_get_dest_path(nullptr, dst, CMPNT_PKG_TYPE_IMAGE), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_get_dest_path", "input param is error.\n"));
    EXPECT_EQ(std::string(dst, sizeof(dst)), std::string(sizeof(dst), 'x'));
    forget_log();
    EXPECT_EQ(cmpnt_get_dest_path("/d/a.bin", nullptr, CMPNT_PKG_TYPE_IMAGE), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_get_dest_path", "input param is error.\n"));
}
