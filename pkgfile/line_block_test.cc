#include "pkgfile/line_block.hh"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <random>

#include "common/guard.hh"
#include "tests/support/device_test.hh"

class LineBlockTest : public DeviceTest {
protected:
    LineBlock &open_text(const std::string &text) {
        write_file("/tmp/text", text);
        file.reset(open("/tmp/text", O_RDONLY));
        block.reset(new LineBlock);
        start_block(*block, file.get());
        return *block;
    }
    std::string next_line(size_t longest = LineBlock::capacity) {
        const TextLine line = next_line_in_block(*block, longest);
        EXPECT_EQ(line.length, line.text == nullptr ? 0 : strlen(line.text));
        return line.text == nullptr ? "(none)" : line.text;
    }
    std::string gets(size_t size) {
        std::vector<char> text(size + 1, 'x');
        const char *got = gets_from_block(*block, text.data(), size);
        EXPECT_EQ(text[size], 'x');
        return got == nullptr ? "(none)" : got;
    }

    Descriptor file;
    std::unique_ptr<LineBlock> block;
};

TEST_F(LineBlockTest, HandsOutLinesWithoutTheirNewlines) {
    open_text("one\n\n two\r\nrest");
    EXPECT_EQ(next_line(), "one");
    EXPECT_EQ(next_line(), "");
    EXPECT_EQ(next_line(), " two\r");
    EXPECT_EQ(next_line(), "(none)");
    EXPECT_EQ(gets(80), "rest");
    EXPECT_EQ(next_line(), "(none)");
    EXPECT_EQ(gets(80), "(none)");
}

TEST_F(LineBlockTest, LeavesALineTooLongForTheCaller) {
    open_text("123456\nnext\n");
    EXPECT_EQ(next_line(5), "(none)");
    EXPECT_EQ(next_line(6), "123456");
    EXPECT_EQ(next_line(5), "next");
}

TEST_F(LineBlockTest, LeavesALineWithAZeroByte) {
    open_text(std::string("a\0b\nnext\n", 9));
    EXPECT_EQ(next_line(), "(none)");
    EXPECT_EQ(gets(80), "a");
    EXPECT_EQ(next_line(), "next");
}

TEST_F(LineBlockTest, JoinsALineThatBlocksDivide) {
    std::vector<std::string> lines;
    std::string text;
    for (int i = 0; text.size() < 5 * LineBlock::capacity; i++) {
        lines.push_back(std::string(static_cast<size_t>(i % 300), 'x') + std::to_string(i));
        text += lines.back() + "\n";
    }
    open_text(text);
    for (const std::string &line : lines) {
        ASSERT_EQ(next_line(), line);
    }
    EXPECT_EQ(next_line(), "(none)");
}

TEST_F(LineBlockTest, JoinsALineThatManyReadsDeliver) {
    int ends[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends), 0);  // a read takes one packet
    file.reset(ends[0]);
    const std::string text = std::string(50, 'x') + "\nnext\na" + std::string(1, '\0') + "b\n";
    for (const char &c : text) {
        ASSERT_EQ(write(ends[1], &c, 1), 1);
    }
    close(ends[1]);
    block.reset(new LineBlock);
    start_block(*block, file.get());
    EXPECT_EQ(next_line(), std::string(50, 'x'));
    EXPECT_EQ(next_line(), "next");
    EXPECT_EQ(next_line(), "(none)");
    EXPECT_EQ(gets(80), "a");
    EXPECT_EQ(next_line(), "(none)");
}

TEST_F(LineBlockTest, LeavesALineThatFillsItAll) {
    const std::string line(LineBlock::capacity, 'x');
    open_text(line + "y\nnext\n");
    EXPECT_EQ(next_line(2 * LineBlock::capacity), "(none)");
    EXPECT_EQ(gets(2 * LineBlock::capacity), line + "y\n");
    EXPECT_EQ(next_line(), "next");
}

TEST_F(LineBlockTest, GetsWhatFgetsGets) {
    std::mt19937 random(1);
    for (int i = 0; i < 20; i++) {
        std::string text;
        while (text.size() < 40000) {
            text += std::string(random() % (i < 10 ? 100 : 30000), 'x') + '\n';
        }
        text.resize(text.size() - random() % 2);
        open_text(text);
        const Stream stream(fopen("/tmp/text", "r"));
        for (bool more = true; more;) {
            const size_t size = 2 + random() % (i % 2 == 0 ? 100 : 40000);
            std::vector<char> expected(size);
            more = fgets(expected.data(), static_cast<int>(size), stream.get()) != nullptr;
            ASSERT_EQ(gets(size), more ? expected.data() : "(none)");
        }
    }
}

TEST_F(LineBlockTest, KnowsAReadThatFailed) {
    LineBlock &folder = open_text("");
    folder.fd = open("/tmp", O_RDONLY);
    EXPECT_EQ(next_line(), "(none)");
    EXPECT_TRUE(folder.failed);
    EXPECT_EQ(gets(80), "(none)");
    close(folder.fd);
}

TEST_F(LineBlockTest, DropsTheTextThatAReadErrorCutShort) {
    LineBlock &text = open_text("whole\nhalf");
    EXPECT_EQ(next_line(), "whole");
    text.fd = -1;
    EXPECT_EQ(next_line(), "(none)");
    EXPECT_TRUE(text.failed);
    EXPECT_EQ(gets(80), "(none)");
}

TEST_F(LineBlockTest, TakesAnEndOfFileForNoFailure) {
    LineBlock &text = open_text("");
    EXPECT_EQ(next_line(), "(none)");
    EXPECT_EQ(gets(80), "(none)");
    EXPECT_FALSE(text.failed);
}
