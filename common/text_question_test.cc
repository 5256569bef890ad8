#include <limits.h>

#include "tests/support/device_test.hh"

class TextQuestion : public DeviceTest {};

TEST_F(TextQuestion, FindsATextInAText) {
    EXPECT_EQ(cmpnt_str_is_exist("haystack", "hay"), 1);
    EXPECT_EQ(cmpnt_str_is_exist("haystack", "stack"), 1);
    EXPECT_EQ(cmpnt_str_is_exist("haystack", "haystack"), 1);
    EXPECT_EQ(cmpnt_str_is_exist("haystack", ""), 1);
    EXPECT_EQ(cmpnt_str_is_exist("haystack", "Hay"), 0);
    EXPECT_EQ(cmpnt_str_is_exist("hay", "haystack"), 0);
    EXPECT_EQ(cmpnt_str_is_exist("", "x"), 0);
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(TextQuestion, FindsNothingInNull) {
    EXPECT_EQ(cmpnt_str_is_exist(nullptr, "x"), 0);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_str_is_exist", "param is null\n"));
    forget_log();
    EXPECT_EQ(cmpnt_str_is_exist("x", nullptr), 0);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_str_is_exist", "param is null\n"));
}

TEST_F(TextQuestion, ANameIsNullWhenAllItsBytesAreZero) {
    char name[8] = {};
    EXPECT_EQ(cmpnt_name_is_null(name, 8), 1);
    for (int32_t i = 0; i < 8; i++) {
        memset(name, 0, sizeof(name));
        name[i] = static_cast<char>(0x80 + i);
        EXPECT_EQ(cmpnt_name_is_null(name, 8), 0) << i;
        EXPECT_EQ(cmpnt_name_is_null(name, i), 1) << "what is behind the length does not count";
        EXPECT_EQ(cmpnt_name_is_null(name, i + 1), 0);
    }
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(TextQuestion, ANameWithoutALengthIsNull) {
    for (int32_t length : {0, -1, INT_MIN}) {
        EXPECT_EQ(cmpnt_name_is_null("text", length), 1);
    }
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(TextQuestion, AMissingNameIsNullAndSaysSoWithoutANewline) {
    EXPECT_EQ(cmpnt_name_is_null(nullptr, 8), 1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_name_is_null", "param is null"));
    forget_log();
    EXPECT_EQ(cmpnt_name_is_null(nullptr, 0), 1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_name_is_null", "param is null"));
}
