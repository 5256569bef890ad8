#include "pkgfile/number.hh"

#include "tests/support/device_test.hh"

class Number : public DeviceTest {};

TEST_F(Number, DecimalHas32Bits) {
    struct {
        const char *text;
        int32_t number;
    } const cases[] = {
        {"0", 0},
        {"-5", -5},
        {"+3", 3},
        {"010", 10},
        {"0x10", 0},
        {"12 monkeys", 12},
        {"yes", 0},
        {"", 0},
        {"2147483647", INT32_MAX},
        {"2147483648", INT32_MAX},
        {"4294967297", INT32_MAX},
        {"-2147483648", INT32_MIN},
        {"-2147483649", INT32_MIN},
        {"-4294967297", INT32_MIN},
        {"99999999999999999999999", INT32_MAX},
        {"-99999999999999999999999", INT32_MIN},
    };
    for (const auto &test : cases) {
        EXPECT_EQ(decimal_number(test.text), test.number) << test.text;
    }
}

TEST_F(Number, DecimalTellsWhereItEnds) {
    struct {
        const char *text;
        const char *rest;
    } const cases[] = {
        {"12 monkeys", " monkeys"},
        {" -5", ""},
        {"99999999999999999999999x", "x"},
        {"yes", "yes"},
        {" -", " -"},
        {"", ""},
    };
    for (const auto &test : cases) {
        char *end = nullptr;
        decimal_number(test.text, &end);
        EXPECT_STREQ(end, test.rest) << test.text;
    }
}

TEST_F(Number, PrefixedIsInTheBaseOfItsPrefix) {
    struct {
        const char *text;
        uint32_t number;
    } const cases[] = {
        {"42", 42},    {"010", 8}, {"08", 0},   {"017779", 1023}, {"0x10", 16},
        {"0XfF", 255}, {"0x", 0},  {"0xg", 0},  {"0b11", 0},      {"0", 0},
        {"12 kB", 12}, {"1a", 1},  {"kB", 0},   {"", 0},          {"+7", 7},
        {"1:", 1},     {"1/", 1},  {"0x1G", 1}, {"0x1@", 1},      {"\xb1", 0},
    };
    for (const auto &test : cases) {
        EXPECT_EQ(prefixed_number(test.text), test.number) << test.text;
    }
}

TEST_F(Number, PrefixedMayHaveOneSign) {
    EXPECT_EQ(prefixed_number("-1"), UINT32_MAX);
    EXPECT_EQ(prefixed_number("-2"), UINT32_MAX - 1);
    EXPECT_EQ(prefixed_number("-0x10"), 0u - 16);
    EXPECT_EQ(prefixed_number("-4294967295"), 1u);
    for (const char *text : {"-", "+", "- 5", "--5", "-+5", "+-5"}) {
        EXPECT_EQ(prefixed_number(text), 0u) << text;
    }
}

TEST_F(Number, PrefixedSaturatesWhateverItsSign) {
    EXPECT_EQ(prefixed_number("4294967294"), UINT32_MAX - 1);
    for (const char *text :
         {"4294967295", "4294967296", "5000000000", "-4294967296", "-5000000000", "0x1ffffffff",
          "040000000000", "99999999999999999999999", "-99999999999999999999999"}) {
        EXPECT_EQ(prefixed_number(text), UINT32_MAX) << text;
    }
}
