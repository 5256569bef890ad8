#include "pkgfile/stream_reader.hh"

#include <fcntl.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <random>

#include "common/guard.hh"
#include "tests/support/device_test.hh"

namespace {

constexpr char reader[] = "parse_info_from_stream";
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

// A handler that hands its reader's buffer to the reader, and has it lost.
struct Inner {
    FILE *stream;
    char **buffer;
    char *lost;
    Lines lines;
    int32_t calls;
};

int32_t read_inner(void *record, char *, cmpnt_file_param *param) {
    Inner *inner = static_cast<Inner *>(record);
    inner->calls++;
    inner->lost = *inner->buffer;
    fault::fail("realloc", 1, ENOMEM);
    EXPECT_EQ(parse_info_from_stream(collect, &inner->lines, inner->stream, inner->buffer, param),
              -1);
    return 0;
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
    enum class Source { stream, block };

    void SetUp() override {
        DeviceTest::SetUp();
        take_new_buffer();
    }
    void TearDown() override {
        free(buffer);
        DeviceTest::TearDown();
    }
    void take_new_buffer() {
        free(buffer);
        buffer = static_cast<char *>(malloc(line_buffer_size));
    }
    int32_t read_open_stream(Source source = Source::stream) {
        if (source == Source::stream) {
            return parse_info_from_stream(collect, &lines, stream.get(), &buffer, &param);
        }
        start_block(block, fileno(stream.get()));
        return read_lines({collect_text_line, &lines, &param}, &block, buffer);
    }
    int32_t read_text(const std::string &text, Source source = Source::stream) {
        write_file("/tmp/lines", text);
        stream.reset(fopen("/tmp/lines", "r"));
        take_new_buffer();
        lines.seen.clear();
        return read_open_stream(source);
    }

    Stream stream;
    LineBlock block;
    Lines lines;
    char *buffer = nullptr;
    cmpnt_file_param param = {};
};

// What a host's stream and the library's own files have in common.
class EachSource : public StreamReader, public testing::WithParamInterface<bool> {
protected:
    static Source source() { return GetParam() ? Source::block : Source::stream; }
    int32_t read(const std::string &text) { return read_text(text, source()); }
};
INSTANTIATE_TEST_SUITE_P(OfLines, EachSource, testing::Bool());

TEST_P(EachSource, HandsEveryLineWithoutItsNewline) {
    EXPECT_EQ(read("one\n\n  two\r\nthree\n"), 0);
    EXPECT_EQ(lines.seen, (std::vector<std::string>{"one", "", "  two\r", "three"}));
    EXPECT_EQ(lines.param, &param);
    EXPECT_TRUE(trace_messages().empty());
}

TEST_P(EachSource, FindsNoLineInAnEmptyFile) {
    EXPECT_EQ(read(""), 0);
    EXPECT_TRUE(lines.seen.empty());
    EXPECT_STREQ(buffer, "");
    EXPECT_TRUE(trace_messages().empty());
}

TEST_P(EachSource, LeavesTheBufferEmptyAtTheEnd) {
    EXPECT_EQ(read("text\n"), 0);
    EXPECT_STREQ(buffer, "");
}

TEST_P(EachSource, HandsALastLineWithoutNewlineAndReportsIt) {
    for (const size_t length : {1u, 1021u, 1022u, 1024u, 1025u, 2046u, 2048u, 1048574u}) {
        forget_log();
        const std::string last(length, 'x');
        EXPECT_EQ(read("one\n" + last), 0);
        EXPECT_EQ(lines.seen, (std::vector<std::string>{"one", last})) << length;
        EXPECT_TRUE(logged("CMPNT_ERROR", reader, missing_newline)) << length;
        EXPECT_EQ(trace_lines().size(), 1u);
    }
}

TEST_P(EachSource, OnlyTracesALastLineThatFilledTheBuffer) {
    for (const size_t length : {1023u, 2047u}) {
        forget_log();
        const std::string last(length, 'x');
        EXPECT_EQ(read("one\n" + last), 0);
        EXPECT_EQ(lines.seen, (std::vector<std::string>{"one", last}));
        EXPECT_TRUE(logged("CMPNT_TRACE", reader, missing_newline));
        EXPECT_EQ(trace_lines().size(), 1u);
    }
}

TEST_P(EachSource, IgnoresTheAnswerToALastLineWithoutNewline) {
    for (const size_t length : {4u, 1023u}) {
        lines.answers = {handler_error};
        EXPECT_EQ(read(std::string(length, 'x')), 0);
        EXPECT_EQ(lines.seen.size(), 1u);
        EXPECT_EQ(traced("error", reader, "parse_line error\n"), 0);
    }
}

TEST_P(EachSource, TakesLinesOfAnyLengthWholeAndGrowsTheBufferForThem) {
    const struct {
        size_t length;
        int growths;
    } cases[] = {{1021, 0}, {1022, 0}, {1023, 1}, {1024, 1},  {1025, 1},    {2046, 1},
                 {2047, 2}, {2048, 2}, {3000, 2}, {10000, 4}, {1048574, 10}};
    for (const auto &test : cases) {
        fault::reset();
        const std::string line(test.length, 'x');
        EXPECT_EQ(read(line + "\nnext\n" + line + "\n"), 0) << test.length;
        EXPECT_EQ(fault::calls("realloc"), test.growths) << test.length;
        EXPECT_EQ(lines.seen, (std::vector<std::string>{line, "next", line})) << test.length;
    }
    EXPECT_TRUE(trace_messages().empty());
}

TEST_P(EachSource, RefusesALongerLineByItsNumber) {
    EXPECT_EQ(read("one\ntwo\n" + std::string(1048575, 'x') + "\nfour\n"), -1);
    EXPECT_EQ(lines.seen, (std::vector<std::string>{"one", "two"}));
    EXPECT_TRUE(logged("CMPNT_ERROR", reader, "Excessively long line at 3. maybe corrupt file.\n"));
    EXPECT_NE(buffer, nullptr);
}

TEST_P(EachSource, RefusesALongerLineAtTheEndOfTheFile) {
    EXPECT_EQ(read(std::string(1048575, 'x')), -1);
    EXPECT_TRUE(lines.seen.empty());
    EXPECT_TRUE(logged("CMPNT_ERROR", reader, "Excessively long line at 1. maybe corrupt file.\n"));
}

TEST_P(EachSource, FailsAtAParseError) {
    lines.answers = {0, handler_error};
    EXPECT_EQ(read("one\ntwo\nthree\n"), -1);
    EXPECT_EQ(lines.seen, (std::vector<std::string>{"one", "two"}));
    EXPECT_TRUE(logged("CMPNT_ERROR", reader, "parse_line error\n"));
}

TEST_P(EachSource, StopsWithSuccessAtAnyOtherAnswer) {
    for (const int32_t answer : {-1, -2, -3, -5, 1, 4}) {
        lines.answers = {0, answer};
        EXPECT_EQ(read("one\ntwo\nthree\n"), 0) << answer;
        EXPECT_EQ(lines.seen, (std::vector<std::string>{"one", "two"})) << answer;
    }
    EXPECT_TRUE(trace_messages().empty());
}

TEST_P(EachSource, FailsWhenItCannotBeRead) {
    stream.reset(fopen("/tmp", "r"));
    EXPECT_EQ(read_open_stream(source()), -1);
    EXPECT_TRUE(lines.seen.empty());
    EXPECT_TRUE(logged("CMPNT_ERROR", reader, "fgets fail.\n"));
}

TEST_P(EachSource, HasHandedTheLinesBeforeAReadError) {
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_NONBLOCK), 0);  // empty but open, it is an error to read from
    const Descriptor writer(ends[1]);
    ASSERT_EQ(write(writer.get(), "one\ntwo\n", 8), 8);
    stream.reset(fdopen(ends[0], "r"));
    EXPECT_EQ(read_open_stream(source()), -1);
    EXPECT_EQ(lines.seen, (std::vector<std::string>{"one", "two"}));
    EXPECT_TRUE(logged("CMPNT_ERROR", reader, "fgets fail.\n"));
    EXPECT_EQ(trace_lines().size(), 1u);
}

TEST_P(EachSource, TakesALineWithAZeroByteForTheLast) {
    EXPECT_EQ(read(std::string("one\nt\0wo\nthree\n", 15)), 0);
    EXPECT_EQ(lines.seen, (std::vector<std::string>{"one", "t"}));
    EXPECT_TRUE(logged("CMPNT_ERROR", reader, missing_newline));
}

TEST_F(StreamReader, DoublesTheBufferAndKeepsItForTheNextLine) {
    const std::string line(3000, 'x');
    EXPECT_EQ(read_text(line + "\n" + line + "\n"), 0);
    EXPECT_EQ(lines.seen, (std::vector<std::string>{line, line}));
    EXPECT_EQ(fault::calls("realloc"), 2);
    EXPECT_EQ(buffer, lines.last_address);
}

TEST_F(StreamReader, TakesNoMoreOfAStreamThanTheLinesHandedOver) {
    lines.answers = {0, handler_stop};
    EXPECT_EQ(read_text("one\ntwo\nthree\n"), 0);
    char rest[16] = "";
    EXPECT_STREQ(fgets(rest, sizeof(rest), stream.get()), "three\n");
}

TEST_F(StreamReader, DropsTheLineThatAReadErrorCutShort) {
    fault::fail("ferror", 1, EIO);
    EXPECT_EQ(read_text(std::string(1023, 'x')), -1);
    EXPECT_TRUE(lines.seen.empty());
    EXPECT_EQ(trace_messages(),
              (std::vector<std::string>{"error parse_info_from_stream: fgets fail.\n"}));
}

TEST_F(StreamReader, LosesTheBufferWhenItCannotGrow) {
    fault::fail("realloc", 1, ENOMEM);
    EXPECT_EQ(read_text("one\n" + std::string(3000, 'x') + "\n"), -1);
    EXPECT_EQ(buffer, nullptr);
    EXPECT_EQ(lines.seen, (std::vector<std::string>{"one"}));
    EXPECT_TRUE(logged("CMPNT_ERROR", "xrealloc", "realloc fail.\n"));
    EXPECT_EQ(trace_lines().size(), 1u);
    buffer = lines.last_address;  // not freed by the reader
}

TEST_F(StreamReader, FailsWhenAHandlerHasLostTheBuffer) {
    write_file("/tmp/long", std::string(3000, 'x') + "\n");
    write_file("/tmp/lines", "one\ntwo\n");
    stream.reset(fopen("/tmp/lines", "r"));
    const Stream long_line(fopen("/tmp/long", "r"));
    Inner inner = {long_line.get(), &buffer, nullptr, {}, 0};
    EXPECT_EQ(parse_info_from_stream(read_inner, &inner, stream.get(), &buffer, &param), -1);
    EXPECT_EQ(inner.calls, 1);
    EXPECT_EQ(buffer, nullptr);
    buffer = inner.lost;
}

TEST_F(StreamReader, KeepsTheBufferOfItsOwnersInTheLibraryWhenItCannotGrow) {
    fault::fail("realloc", 2, ENOMEM);
    EXPECT_EQ(read_text(std::string(5000, 'x'), Source::block), read_without_memory);
    EXPECT_NE(buffer, nullptr);
    EXPECT_TRUE(logged("CMPNT_ERROR", "xrealloc", "realloc fail.\n"));
}

TEST_F(StreamReader, ReadsBlocksAsItReadsStreams) {
    std::mt19937 random(1);
    for (int i = 0; i < 100; i++) {
        const std::string text = random_text(random);
        forget_log();
        const int32_t result = read_text(text);
        const std::vector<std::string> seen = lines.seen;
        const std::vector<std::string> messages = trace_messages();

        forget_log();
        ASSERT_EQ(read_text(text, Source::block), result);
        ASSERT_EQ(lines.seen, seen);
        ASSERT_EQ(trace_messages(), messages);
    }
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
