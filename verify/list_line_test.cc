#include "verify/list_line.hh"

#include <algorithm>

#include "common/guard.hh"
#include "tests/support/device_test.hh"

namespace {

// An empty read is told by its own word.
std::vector<std::string> lines_of(const std::string &content) {
    write_file("/tmp/list", content);
    const Stream list(fopen("/tmp/list", "r"));
    std::vector<std::string> lines;
    ListLine line;
    while (read_list_line(list.get(), line)) {
        lines.push_back(line.was_empty ? "EMPTY" : line.text);
    }
    return lines;
}

using Lines = std::vector<std::string>;

}  // namespace

class ListLineTest : public DeviceTest {};

TEST_F(ListLineTest, LosesTheLastCharacterOfEachLine) {
    EXPECT_EQ(lines_of(""), Lines());
    EXPECT_EQ(lines_of("\n"), Lines({""}));
    EXPECT_EQ(lines_of("one\n\ntwo\n"), Lines({"one", "", "two"}));
    EXPECT_EQ(lines_of("one\r\ntwo \n"), Lines({"one\r", "two "}));
    EXPECT_EQ(lines_of("one\nfoo"), Lines({"one", "fo"}));
    EXPECT_EQ(lines_of("f"), Lines({""}));
}

TEST_F(ListLineTest, EndsAtAZeroByte) {
    EXPECT_EQ(lines_of(std::string("\0abc\nnext\n", 10)), Lines({"EMPTY", "next"}));
    EXPECT_EQ(lines_of(std::string("ab\0c\nnext\n", 10)), Lines({"a", "next"}));
}

TEST_F(ListLineTest, ComesInPiecesWhenItIsLong) {
    const std::string fitting(1022, 'x');
    EXPECT_EQ(lines_of(fitting + "\nnext\n"), Lines({fitting, "next"}));
    EXPECT_EQ(lines_of(fitting + "y\nnext\n"), Lines({fitting, "", "next"}));
    EXPECT_EQ(lines_of(fitting + "yzz\nnext\n"), Lines({fitting, "zz", "next"}));
    EXPECT_EQ(lines_of(fitting + "y" + fitting + "y"), Lines({fitting, fitting}));
}

TEST_F(ListLineTest, LeavesNothingOfTheLineBefore) {
    write_file("/tmp/list", std::string(1000, 'x') + "\n\n");
    const Stream list(fopen("/tmp/list", "r"));
    ListLine line;
    memset(line.text, 'y', sizeof(line.text));
    ASSERT_TRUE(read_list_line(list.get(), line));
    ASSERT_TRUE(read_list_line(list.get(), line));
    EXPECT_TRUE(std::all_of(line.text, line.text + sizeof(line.text),
                            [](char letter) { return letter == '\0'; }));
    EXPECT_FALSE(read_list_line(list.get(), line));
}
