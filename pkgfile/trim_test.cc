#include "tests/support/device_test.hh"

class Trim : public DeviceTest {};

TEST_F(Trim, TakesWhiteSpaceFromBothEnds) {
    struct {
        const char *text;
        const char *trimmed;
    } const cases[] = {
        {"abc", "abc"},
        {"  abc", "abc"},
        {"abc \t\n\v\f\r", "abc"},
        {"\t\r\n\v\f a  b ", "a  b"},
        {" x ", "x"},
        {"", ""},
        {"   ", ""},
        {"\n", ""},
        {" \xa0\x85 ", "\xa0\x85"},
    };
    for (const auto &test : cases) {
        std::string buffer = test.text;
        EXPECT_EQ(cmpnt_trim(&buffer[0]), &buffer[0]);
        EXPECT_STREQ(buffer.c_str(), test.trimmed);
    }
}

TEST_F(Trim, OverwritesTrailingWhiteSpaceWithZeros) {
    char text[] = "ab  \t";
    cmpnt_trim(text);
    EXPECT_EQ(std::string(text, sizeof(text)), std::string("ab\0\0\0\0", 6));
    char blanks[] = "   ";
    cmpnt_trim(blanks);
    EXPECT_EQ(std::string(blanks, sizeof(blanks)), std::string(4, '\0'));
}

TEST_F(Trim, ReturnsNullForNull) {
    EXPECT_EQ(cmpnt_trim(nullptr), nullptr);
    EXPECT_TRUE(trace_messages().empty());
}
