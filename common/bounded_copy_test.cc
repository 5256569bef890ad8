#include <limits.h>

#include "tests/support/device_test.hh"

class BoundedCopy : public DeviceTest {
protected:
    static constexpr size_t dest_size = 16;
    char dest[dest_size];
    void SetUp() override {
        DeviceTest::SetUp();
        memset(dest, '#', sizeof(dest));
    }
    // What the first `length` bytes hold; behind them nothing may have been written.
    std::string held(size_t length) {
        EXPECT_EQ(std::string(dest + length, dest_size - length),
                  std::string(dest_size - length, '#'));
        return std::string(dest, length);
    }
};

class BoundedPrint : public BoundedCopy {};

TEST_F(BoundedCopy, FollowsItsOwnRules) {
    using namespace std::string_literals;
    const struct {
        const char *src;
        int32_t dest_len, src_len;
        int32_t result;
        std::string held;
        const char *message;
    } cases[] = {
        {"abc", 8, 3, 0, "abc\0\0\0\0\0"s, nullptr},
        {"abcdef", 4, 2, 0, "ab\0\0"s, nullptr},
        {"abc", 4, 4, 0, "abc\0"s, nullptr},
        {"abc", 4, 3, 0, "abc\0"s, nullptr},
        {"", 2, 1, 0, "\0\0"s, nullptr},
        // A source exactly as long as the destination loses one byte to the terminator, and only
        // whole.
        {"abc", 3, 3, 0, "ab\0"s, "src(abc) is too long, src_len(3).\n"},
        {"a", 1, 1, 0, "\0"s, "src(a) is too long, src_len(1).\n"},
        {"abc", 3, 2, -1, "\0\0\0"s, "src(abc) is too long, src_len(2), dest(3).\n"},
        {"abc", 3, 4, -1, "\0\0\0"s, "src(abc) is too long, src_len(4), dest(3).\n"},
        {"abcdef", 3, 4, -1, "\0\0\0"s, "src(abcdef) is too long, src_len(4), dest(3).\n"},
        {"ab", 3, 4, -1, "\0\0\0"s, "src(ab) is too long, src_len(4), dest(3).\n"},
        {"abc", 3, INT_MAX, -1, "\0\0\0"s, "src(abc) is too long, src_len(2147483647), dest(3).\n"},
        // A longer source fills the destination to the last byte, without a word.
        {"abcdef", 3, 3, 0, "abc", nullptr},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << c.src << " " << c.dest_len << " " << c.src_len);
        memset(dest, '#', sizeof(dest));
        forget_log();
        EXPECT_EQ(cmpnt_memcpy(dest, c.src, c.dest_len, c.src_len), c.result);
        EXPECT_EQ(held(static_cast<size_t>(c.dest_len)), c.held);
        if (c.message == nullptr) {
            EXPECT_TRUE(trace_messages().empty());
        } else {
            EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_memcpy", c.message));
            EXPECT_EQ(trace_messages().size(), 1u);
        }
    }
}

TEST_F(BoundedCopy, CopiesBytesBehindATerminator) {
    EXPECT_EQ(cmpnt_memcpy(dest, "a\0bc", 6, 4), 0);
    EXPECT_EQ(held(6), std::string("a\0bc\0\0", 6));
}

TEST_F(BoundedCopy, ReadsNoFurtherThanOneByteBehindTheDestinationsLength) {
    const std::vector<char> unterminated(5, 'x');
    EXPECT_EQ(cmpnt_memcpy(dest, unterminated.data(), 4, 4), 0);
    EXPECT_EQ(held(4), "xxxx");
}

TEST_F(BoundedCopy, LeavesTheDestinationForInvalidArguments) {
    const struct {
        void *dest;
        const void *src;
        int32_t dest_len, src_len;
    } cases[] = {
        {nullptr, "abc", 8, 3}, {dest, nullptr, 8, 3},     {dest, "abc", 0, 3},
        {dest, "abc", 8, 0},    {dest, "abc", -1, 3},      {dest, "abc", 8, -1},
        {dest, "", 8, 0},       {dest, "abc", INT_MIN, 3}, {dest, "abc", 8, INT_MIN},
    };
    for (const auto &c : cases) {
        forget_log();
        EXPECT_EQ(cmpnt_memcpy(c.dest, c.src, c.dest_len, c.src_len), -1);
        EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_memcpy", "param is invalid.\n"));
        EXPECT_EQ(trace_messages().size(), 1u);
        held(0);
    }
}

TEST_F(BoundedPrint, SucceedsWhenTheWholeTextFits) {
    EXPECT_EQ(cmpnt_snprintf(dest, 4, "%s", "abc"), 0);
    EXPECT_EQ(held(4), std::string("abc\0", 4));
    EXPECT_EQ(cmpnt_snprintf(dest, 16, "%d-%s", 7, "x"), 0);
    EXPECT_STREQ(dest, "7-x");
    EXPECT_EQ(cmpnt_snprintf(dest, 1, "%s", ""), 0);
    EXPECT_STREQ(dest, "");
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(BoundedPrint, CutsAndSaysSo) {
    EXPECT_EQ(cmpnt_snprintf(dest, 4, "%s", "abcd"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_snprintf", "truncate occured\n"));
    EXPECT_EQ(held(4), std::string("abc\0", 4));
    forget_log();
    EXPECT_EQ(cmpnt_snprintf(dest, 1, "%s", "a"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_snprintf", "truncate occured\n"));
    EXPECT_STREQ(dest, "");
}

TEST_F(BoundedPrint, WritesNothingIntoABufferWithoutSize) {
    for (int32_t size : {0, -1, INT_MIN}) {
        forget_log();
        EXPECT_EQ(cmpnt_snprintf(dest, size, "%s", "abc"), -1);
        EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_snprintf", "truncate occured\n"));
        held(0);
    }
}

TEST_F(BoundedPrint, FailsWhereThePrintItselfFails) {
    EXPECT_EQ(cmpnt_snprintf(dest, 16, "%ls", L"\x3b1"), -1) << "no byte for it in the C locale";
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_snprintf", "truncate occured\n"));
}

TEST_F(BoundedPrint, RefusesNullQuietly) {
    int32_t (*print)(char *, int32_t, const char *, ...) = cmpnt_snprintf;
    EXPECT_EQ(print(nullptr, 4, "%s", "abc"), -1);
    EXPECT_EQ(print(dest, 4, nullptr), -1);
    held(0);
    EXPECT_TRUE(trace_messages().empty());
}
