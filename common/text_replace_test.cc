#include <errno.h>
#include <limits.h>

#include "tests/support/device_test.hh"

class Replace : public DeviceTest {
protected:
    static constexpr size_t room = 64;
    char buffer[room];

    int32_t replace(const char *text, int32_t size, const char *old_text, const char *new_text) {
        memset(buffer, '#', sizeof(buffer));
        snprintf(buffer, sizeof(buffer), "%s", text);
        forget_log();
        return cmpnt_replace(buffer, size, old_text, new_text);
    }
};

TEST_F(Replace, ReplacesEveryOccurrence) {
    const struct {
        const char *text, *old_text, *new_text, *result;
    } cases[] = {
        {"a.b.c", ".", "-", "a-b-c"},
        {".a.", ".", "::", "::a::"},
        {"one two one", "one", "1", "1 two 1"},
        {"one two", "one ", "", "two"},
        {"no match", "x", "yy", "no match"},
        {"aaa", "aa", "b", "ba"},
        {"abab", "abab", "ab", "ab"},
        {"f(a(b", "(", "\\(", "f\\(a\\(b"},
        {"same", "same", "same", "same"},
        {"text", "longer than the text", "x", "text"},
        {"text", "", "x", "text"},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(replace(c.text, room, c.old_text, c.new_text), 0) << c.text;
        EXPECT_STREQ(buffer, c.result);
        EXPECT_TRUE(trace_messages().empty());
    }
}

TEST_F(Replace, LeavesNothingOfALongerTextBehind) {
    EXPECT_EQ(replace("abcabc", 10, "abc", "x"), 0);
    EXPECT_EQ(std::string(buffer, 10), std::string("xx\0\0\0\0\0\0\0\0", 10));
    EXPECT_EQ(buffer[10], '#');
}

TEST_F(Replace, FillsTheBufferWithTheTerminator) {
    EXPECT_EQ(replace("(((", 7, "(", "\\("), 0);
    EXPECT_STREQ(buffer, "\\(\\(\\(");
    EXPECT_EQ(buffer[7], '#');
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(Replace, LosesTheLastByteOfAResultAsLongAsTheBuffer) {
    EXPECT_EQ(replace("(((", 6, "(", "\\("), 0);
    EXPECT_STREQ(buffer, "\\(\\(\\");
    EXPECT_EQ(buffer[6], '#');
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_memcpy", "src(\\(\\(\\() is too long, src_len(6).\n"));
    EXPECT_EQ(trace_messages().size(), 1u);
}

TEST_F(Replace, ZeroesABufferThatIsTooSmall) {
    EXPECT_EQ(replace("(((", 5, "(", "\\("), -1);
    EXPECT_EQ(std::string(buffer, 5), std::string(5, '\0'));
    EXPECT_EQ(buffer[5], '#');
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_replace", "cmpnt_memcpy fail, new_buf(\\(\\(\\()\n"));
    EXPECT_EQ(trace_messages(),
              (std::vector<std::string>{
                  "error cmpnt_memcpy: src(\\(\\(\\() is too long, src_len(6), dest(5).\n",
                  "error cmpnt_replace: cmpnt_memcpy fail, new_buf(\\(\\(\\()\n"}));
}

TEST_F(Replace, RefusesAnEmptyResultAndKeepsTheText) {
    for (const char *text : {"aa", ""}) {
        EXPECT_EQ(replace(text, room, "a", ""), -1);
        EXPECT_STREQ(buffer, text);
        EXPECT_EQ(trace_messages(), (std::vector<std::string>{
                                        "error cmpnt_memcpy: param is invalid.\n",
                                        "error cmpnt_replace: cmpnt_memcpy fail, new_buf()\n"}));
    }
}

TEST_F(Replace, KeepsTheTextOfABufferWithoutSize) {
    for (int32_t size : {0, -1, INT_MIN}) {
        EXPECT_EQ(replace("text", size, "t", "T"), -1);
        EXPECT_STREQ(buffer, "text");
        EXPECT_EQ(
            trace_messages(),
            (std::vector<std::string>{"error cmpnt_memcpy: param is invalid.\n",
                                      "error cmpnt_replace: cmpnt_memcpy fail, new_buf(TexT)\n"}));
    }
}

TEST_F(Replace, RefusesNull) {
    char text[] = "text";
    const struct {
        char *text;
        const char *old_text, *new_text;
    } cases[] = {{nullptr, "t", "T"}, {text, nullptr, "T"}, {text, "t", nullptr}};
    for (const auto &c : cases) {
        forget_log();
        EXPECT_EQ(cmpnt_replace(c.text, sizeof(text), c.old_text, c.new_text), -1);
        EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_replace", "param is null\n"));
        EXPECT_STREQ(text, "text");
    }
}

TEST_F(Replace, KeepsTheTextWithoutMemory) {
    fault::fail("calloc", 1, ENOMEM);
    EXPECT_EQ(replace("a.b", room, ".", "::"), -1);
    EXPECT_STREQ(buffer, "a.b");
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_replace", "malloc_replace fail\n"));
    // The result and its terminator, no more.
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_malloc",
                       "malloc failed, size(5), error(Cannot allocate memory).\n"));
}

TEST_F(Replace, RefusesAResultThatNoLengthCanTell) {
    std::string text(50000, 'a');
    const std::string replacement(50000, 'b');
    EXPECT_EQ(cmpnt_replace(&text[0], 50001, "a", replacement.c_str()), -1);
    EXPECT_EQ(text, std::string(50000, 'a'));
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_replace", "malloc_replace fail\n"));
    EXPECT_EQ(fault::calls("calloc"), 0);
}
