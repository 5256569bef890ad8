#include "tests/support/device_test.hh"

class StrSame : public DeviceTest {};

TEST_F(StrSame, ComparesTheFirstBytes) {
    EXPECT_EQ(str_is_same("package", "packet", 4), 1);
    EXPECT_EQ(str_is_same("package", "packet", 5), 0);
    EXPECT_EQ(str_is_same("abc", "abc", 3), 1);
    EXPECT_EQ(str_is_same("abc", "abc", 100), 1);
    EXPECT_EQ(str_is_same("abc", "abcd", 100), 0);
    EXPECT_EQ(str_is_same("abc", "Abc", 3), 0);
    EXPECT_EQ(str_is_same("abc", "xyz", 0), 1);
}

TEST_F(StrSame, ComparesAllForANegativeCount) {
    EXPECT_EQ(str_is_same("abc", "abc", -1), 1);
    EXPECT_EQ(str_is_same("abc", "abd", INT32_MIN), 0);
}

TEST_F(StrSame, RefusesNull) {
    EXPECT_EQ(str_is_same(nullptr, "abc", 3), 0);
    EXPECT_TRUE(logged("CMPNT_ERROR", "str_is_same", "input param is error.\n"));
    EXPECT_EQ(str_is_same("abc", nullptr, 3), 0);
    EXPECT_EQ(str_is_same(nullptr, nullptr, 0), 0);
    EXPECT_EQ(traced("error", "str_is_same", "input param is error.\n"), 3);
}
