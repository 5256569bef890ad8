#include "tests/support/device_test.hh"

class ValueFile : public DeviceTest {
protected:
    int32_t read_value(const std::string &text, int32_t size = 16) {
        write_file("/tmp/value", text);
        return cmpnt_get_value_from_file(value, size, "/tmp/value");
    }
    char value[16] = "before";
};

TEST_F(ValueFile, IsTheFirstLineWithoutItsNewline) {
    EXPECT_EQ(read_value("SN123\nrest\n"), 0);
    EXPECT_STREQ(value, "SN123");
    EXPECT_TRUE(
        logged("CMPNT_TRACE", "cmpnt_get_value_from_file", "get file buf(SN123), len(6)\n"));
}

TEST_F(ValueFile, NeedsNoNewline) {
    EXPECT_EQ(read_value("SN123"), 0);
    EXPECT_STREQ(value, "SN123");
    EXPECT_EQ(traced("trace", "cmpnt_get_value_from_file", "get file buf(SN123), len(5)\n"), 1);
}

TEST_F(ValueFile, KeepsBlanksAndTheCarriageReturn) {
    EXPECT_EQ(read_value(" a b \r\n"), 0);
    EXPECT_STREQ(value, " a b \r");
    EXPECT_EQ(traced("trace", "cmpnt_get_value_from_file", "get file buf( a b \r), len(7)\n"), 1);
}

TEST_F(ValueFile, IsEmptyForAnEmptyFirstLine) {
    EXPECT_EQ(read_value("\nrest\n"), 0);
    EXPECT_STREQ(value, "");
    EXPECT_EQ(traced("trace", "cmpnt_get_value_from_file", "get file buf(), len(1)\n"), 1);
}

TEST_F(ValueFile, IsCutToTheBufferAndTheRestZero) {
    memset(value, 'x', sizeof(value));
    EXPECT_EQ(read_value("0123456789\n", 5), 0);
    EXPECT_STREQ(value, "0123");
    EXPECT_EQ(value[5], 'x');
    EXPECT_EQ(read_value("a\n", 16), 0);
    EXPECT_EQ(std::string(value, 16), "a" + std::string(15, '\0'));
}

TEST_F(ValueFile, FailsWhenNothingCanBeRead) {
    EXPECT_EQ(read_value(""), -1);
    EXPECT_STREQ(value, "");
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_get_value_from_file", "buf len is 0.\n"));
    EXPECT_EQ(read_value("text\n", 1), -1);
    EXPECT_EQ(cmpnt_get_value_from_file(value, sizeof(value), "/tmp"), -1);
    EXPECT_EQ(read_value(std::string("\0text\n", 6)), -1);
    EXPECT_EQ(traced("error", "cmpnt_get_value_from_file", "buf len is 0.\n"), 4);
    EXPECT_EQ(trace_lines().size(), 4u);
}

TEST_F(ValueFile, FailsWithoutAFileAndHasZeroedTheBuffer) {
    EXPECT_EQ(cmpnt_get_value_from_file(value, sizeof(value), "/tmp/none"), -1);
    EXPECT_STREQ(value, "");
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_get_value_from_file",
                       "serial file(/tmp/none) is not exist\n"));
}

TEST_F(ValueFile, FailsWhenItCannotBeOpened) {
    write_file("/tmp/value", "text\n");
    fault::fail("open64", 1, EACCES);
    EXPECT_EQ(cmpnt_get_value_from_file(value, sizeof(value), "/tmp/value"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_get_value_from_file",
                       "fopen fail, error(Permission denied)\n"));
    EXPECT_EQ(std::string(value, sizeof(value)), std::string(sizeof(value), '\0'));
}

TEST_F(ValueFile, RefusesNullAndRoomForNothing) {
    write_file("/tmp/value", "text\n");
    EXPECT_EQ(cmpnt_get_value_from_file(nullptr, 16, "/tmp/value"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_get_value_from_file", "param is error, len(16).\n"));
    EXPECT_EQ(cmpnt_get_value_from_file(value, 16, nullptr), -1);
    EXPECT_EQ(cmpnt_get_value_from_file(value, 0, "/tmp/value"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_get_value_from_file", "param is error, len(0).\n"));
    EXPECT_EQ(cmpnt_get_value_from_file(value, -7, "/tmp/value"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_get_value_from_file", "param is error, len(-7).\n"));
    EXPECT_STREQ(value, "before");
}

TEST_F(ValueFile, IsClosedInEveryOutcome) {
    const int before = open_descriptors();
    read_value("text\n");
    read_value("");
    EXPECT_EQ(open_descriptors(), before);
}
