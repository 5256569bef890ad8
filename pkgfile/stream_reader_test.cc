#include "pkgfile/stream_reader.hh"

#include <stdlib.h>
#include <string.h>

#include <random>

#include "common/guard.hh"
#include "tests/support/device_test.hh"

namespace {

constexpr char missing_newline[] = "Missing new line character at end of file!\n";

struct Lines {
    std::vector<std::string> seen;
    std::vector<int32_t> answers;  // one a line, then 0
    cmpnt_file_param *param = nullptr;
    char *last_address = nullptr;
};

int32_t collect(void *record, char *line, cmpnt_file_param *param) {
    Lines *lines = static_cast<Lines *>(record);
    lines->seen.emplace_back(line);
    lines->param = param;
    lines->last_address = line;
    const size_t number = lines->seen.size();
    return number <= lines->answers.size() ? lines->answers[number - 1] : 0;
}

int32_t collect_text_line(void *record, TextLine line, cmpnt_file_param *param) {
    EXPECT_EQ(line.length, strlen(line.text));
    return collect(record, line.text, param);
}

// Short and long lines, some with a carriage return, a zero byte or no newline at the end.
std::string random_text(std::mt19937 &random) {
    std::string text;
    const size_t wanted = random() % 60000;
    while (text.size() < wanted) {
        text += std::string(random() % (random() % 8 == 0 ? 5000 : 80), 'x');
        text += random() % 200 == 0 ? std::string(1, '\0') : "";
        text += "\n";
    }
    if (!text.empty() && random() % 3 == 0) {
        text.pop_back();
    }
    return text;
}

}  // namespace

class StreamReader : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        buffer = static_cast<char *>(malloc(line_buffer_size));
    }
    void TearDown() override {
        free(buffer);
        DeviceTest::TearDown();
    }
    int32_t read_text(const std::string &text) {
        write_file("/tmp/lines", text);
        stream.reset(fopen("/tmp/lines", "r"));
        return parse_info_from_stream(collect, &lines, stream.get(), &buffer, &param);
    }

    Stream stream;
    Lines lines;
    char *buffer = nullptr;
    cmpnt_file_param param = {};
};

TEST_F(StreamReader, HandsEveryLineWithoutItsNewline) {
    EXPECT_EQ(read_text("one\n\n  two\r\nthree\n"), 0);
    EXPECT_EQ(lines.seen, (std::vector<std::string>{"one", "", "  two\r", "three"}));
    EXPECT_EQ(lines.param, &param);
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(StreamReader, FindsNoLineInAnEmptyFile) {
    EXPECT_EQ(read_text(""), 0);
    EXPECT_TRUE(lines.seen.empty());
    EXPECT_STREQ(buffer, "");
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(StreamReader, LeavesTheBufferEmptyAtTheEnd) {
    EXPECT_EQ(read_text("text\n"), 0);
    EXPECT_STREQ(buffer, "");
}

TEST_F(StreamReader, HandsALastLineWithoutNewlineAndReportsIt) {
    EXPECT_EQ(read_text("one\nlast"), 0);
    EXPECT_EQ(lines.seen, (std::vector<std::string>{"one", "last"}));
    EXPECT_TRUE(logged("CMPNT_ERROR", "parse_info_from_stream", missing_newline));
    EXPECT_EQ(trace_lines().size(), 1u);
}

TEST_F(StreamReader, OnlyTracesALastLineThatFilledTheBuffer) {
    for (const size_t length : {1023u, 2047u}) {
        forget_log();
        lines.seen.clear();
        EXPECT_EQ(read_text(std::string(length, 'x')), 0);
        EXPECT_EQ(lines.seen, (std::vector<std::string>{std::string(length, 'x')}));
        EXPECT_TRUE(logged("CMPNT_TRACE", "parse_info_from_stream", missing_newline));
        EXPECT_EQ(trace_lines().size(), 1u);
        free(buffer);
        buffer = static_cast<char *>(malloc(line_buffer_size));
    }
}

TEST_F(StreamReader, IgnoresTheAnswerToALastLineWithoutNewline) {
    for (const size_t length : {4u, 1023u}) {
        lines.seen.clear();
        lines.answers = {handler_error};
        EXPECT_EQ(read_text(std::string(length, 'x')), 0);
        EXPECT_EQ(lines.seen.size(), 1u);
        EXPECT_EQ(traced("error", "parse_info_from_stream", "parse_line error\n"), 0);
    }
}

TEST_F(StreamReader, TakesLinesOfAnyLengthWhole) {
    for (const size_t length : {1021u, 1022u, 1023u, 1024u, 2046u, 2047u, 2048u, 3000u, 1048574u}) {
        const std::string line(length, 'x');
        free(buffer);
        buffer = static_cast<char *>(malloc(line_buffer_size));
        lines.seen.clear();
        EXPECT_EQ(read_text(line + "\nnext\n"), 0) << length;
        EXPECT_EQ(lines.seen, (std::vector<std::string>{line, "next"})) << length;
    }
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(StreamReader, DoublesTheBufferAndKeepsItForTheNextLine) {
    const std::string line(3000, 'x');
    EXPECT_EQ(read_text(line + "\n" + line + "\n"), 0);
    EXPECT_EQ(lines.seen, (std::vector<std::string>{line, line}));
    EXPECT_EQ(fault::calls("realloc"), 2);
    EXPECT_EQ(buffer, lines.last_address);
}

TEST_F(StreamReader, TakesTheLongestLineWithoutNewlineToo) {
    EXPECT_EQ(read_text(std::string(1048574, 'x')), 0);
    ASSERT_EQ(lines.seen.size(), 1u);
    EXPECT_EQ(lines.seen[0].size(), 1048574u);
    EXPECT_TRUE(logged("CMPNT_ERROR", "parse_info_from_stream", missing_newline));
}

TEST_F(StreamReader, RefusesALongerLineByItsNumber) {
    EXPECT_EQ(read_text("one\ntwo\n" + std::string(1048575, 'x') + "\nfour\n"), -1);
    EXPECT_EQ(lines.seen, (std::vector<std::string>{"one", "two"}));
    EXPECT_TRUE(logged("CMPNT_ERROR", "parse_info_from_stream",
                       "Excessively long line at 3. maybe corrupt file.\n"));
    EXPECT_NE(buffer, nullptr);
}

TEST_F(StreamReader, RefusesALongerLineAtTheEndOfTheFile) {
    EXPECT_EQ(read_text(std::string(1048575, 'x')), -1);
    EXPECT_TRUE(lines.seen.empty());
    EXPECT_TRUE(logged("CMPNT_ERROR", "parse_info_from_stream",
                       "Excessively long line at 1. maybe corrupt file.\n"));
}

TEST_F(StreamReader, FailsAtAParseError) {
    lines.answers = {0, handler_error};
    EXPECT_EQ(read_text("one\ntwo\nthree\n"), -1);
    EXPECT_EQ(lines.seen, (std::vector<std::string>{"one", "two"}));
    EXPECT_TRUE(logged("CMPNT_ERROR", "parse_info_from_stream", "parse_line error\n"));
}

TEST_F(StreamReader, StopsWithSuccessAtAnyOtherAnswer) {
    for (const int32_t answer : {-1, -2, -3, -5, 1, 4}) {
        lines.seen.clear();
        lines.answers = {0, answer};
        EXPECT_EQ(read_text("one\ntwo\nthree\n"), 0) << answer;
        EXPECT_EQ(lines.seen, (std::vector<std::string>{"one", "two"})) << answer;
        char rest[16];
        EXPECT_STREQ(fgets(rest, sizeof(rest), stream.get()), "three\n");
    }
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(StreamReader, FailsWhenTheStreamCannotBeRead) {
    stream.reset(fopen("/tmp", "r"));
    EXPECT_EQ(parse_info_from_stream(collect, &lines, stream.get(), &buffer, &param), -1);
    EXPECT_TRUE(lines.seen.empty());
    EXPECT_TRUE(logged("CMPNT_ERROR", "parse_info_from_stream", "fgets fail.\n"));
}

TEST_F(StreamReader, DropsTheLineThatAReadErrorCutShort) {
    fault::fail("ferror", 1, EIO);
    EXPECT_EQ(read_text(std::string(1023, 'x')), -1);
    EXPECT_TRUE(lines.seen.empty());
    EXPECT_EQ(trace_messages(),
              (std::vector<std::string>{"error parse_info_from_stream: fgets fail.\n"}));
}

TEST_F(StreamReader, LosesTheBufferWhenItCannotGrow) {
    char *former = buffer;
    fault::fail("realloc", 1, ENOMEM);
    EXPECT_EQ(read_text("one\n" + std::string(3000, 'x') + "\n"), -1);
    EXPECT_EQ(buffer, nullptr);
    EXPECT_EQ(lines.seen, (std::vector<std::string>{"one"}));
    EXPECT_TRUE(logged("CMPNT_ERROR", "xrealloc", "realloc fail.\n"));
    EXPECT_EQ(trace_lines().size(), 1u);
    buffer = former;  // not freed by the reader
}

TEST_F(StreamReader, KeepsTheBufferOfItsOwnersInTheLibraryWhenItCannotGrow) {
    write_file("/tmp/lines", std::string(5000, 'x'));
    stream.reset(fopen("/tmp/lines", "r"));
    fault::fail("realloc", 2, ENOMEM);
    EXPECT_EQ(read_lines({collect_text_line, &lines, &param}, stream.get(), nullptr, buffer),
              read_without_memory);
    EXPECT_NE(buffer, nullptr);
}

TEST_F(StreamReader, ReadsBlocksAsItReadsStreams) {
    std::mt19937 random(1);
    for (int i = 0; i < 100; i++) {
        const std::string text = random_text(random);
        forget_log();
        lines.seen.clear();
        const int32_t result = read_text(text);
        const std::vector<std::string> seen = lines.seen;
        const std::vector<std::string> messages = trace_messages();

        forget_log();
        lines.seen.clear();
        stream.reset(fopen("/tmp/lines", "r"));
        free(buffer);
        buffer = static_cast<char *>(malloc(line_buffer_size));
        LineBlock block(fileno(stream.get()));
        ASSERT_EQ(read_lines({collect_text_line, &lines, &param}, stream.get(), &block, buffer),
                  result);
        ASSERT_EQ(lines.seen, seen);
        ASSERT_EQ(trace_messages(), messages);
        free(buffer);
        buffer = static_cast<char *>(malloc(line_buffer_size));
    }
}

TEST_F(StreamReader, GrowsItsBufferForALineOfABlockAsForOneOfAStream) {
    const std::string fitting(1022, 'x');
    for (const auto &test : {std::make_pair(fitting, 0), std::make_pair(fitting + "x", 1),
                             std::make_pair(std::string(10000, 'x'), 4)}) {
        write_file("/tmp/lines", test.first + "\n" + test.first + "\n");
        stream.reset(fopen("/tmp/lines", "r"));
        free(buffer);
        buffer = static_cast<char *>(malloc(line_buffer_size));
        LineBlock block(fileno(stream.get()));
        fault::reset();
        EXPECT_EQ(read_lines({collect_text_line, &lines, &param}, stream.get(), &block, buffer), 0);
        EXPECT_EQ(fault::calls("realloc"), test.second) << test.first.size();
        EXPECT_EQ(lines.seen, (std::vector<std::string>{test.first, test.first}));
        lines.seen.clear();
    }
}

TEST_F(StreamReader, FailsWhenABlockCannotBeRead) {
    stream.reset(fopen("/tmp", "r"));
    LineBlock block(fileno(stream.get()));
    EXPECT_EQ(read_lines({collect_text_line, &lines, &param}, stream.get(), &block, buffer), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "parse_info_from_stream", "fgets fail.\n"));
}

TEST_F(StreamReader, TakesALineWithAZeroByteForTheLast) {
    EXPECT_EQ(read_text(std::string("one\nt\0wo\nthree\n", 15)), 0);
    EXPECT_EQ(lines.seen, (std::vector<std::string>{"one", "t"}));
    EXPECT_TRUE(logged("CMPNT_ERROR", "parse_info_from_stream", missing_newline));
}

TEST_F(StreamReader, RefusesNullQuietly) {
    stream.reset(fopen("/dev/null", "r"));
    char *no_buffer = nullptr;
    EXPECT_EQ(parse_info_from_stream(nullptr, &lines, stream.get(), &buffer, &param), -1);
    EXPECT_EQ(parse_info_from_stream(collect, &lines, nullptr, &buffer, &param), -1);
    EXPECT_EQ(parse_info_from_stream(collect, &lines, stream.get(), nullptr, &param), -1);
    EXPECT_EQ(parse_info_from_stream(collect, &lines, stream.get(), &no_buffer, &param), -1);
    EXPECT_TRUE(trace_messages().empty());
}
