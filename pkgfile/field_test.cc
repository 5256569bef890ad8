#include "pkgfile/field.hh"

#include <random>

#include "tests/support/device_test.hh"

class Field : public DeviceTest {};

namespace {

struct ValueCase {
    const char *field;
    const char *line;
    const char *value;
};

std::string with_colons(int count) { return "Package" + std::string(count, ':'); }

// A line's key as the split gives it.
int32_t is_field_by_splitting(const char *field, const char *line, const char *separators) {
    char *pieces[80] = {};
    int32_t count = 0;
    const int32_t split = cmpnt_detach_install_queue(line, separators, pieces, &count, 80);
    const int32_t result = split == 0 && strcmp(pieces[0], field) == 0 ? 1 : 0;
    cmpnt_recycle_pointer_array(pieces, 80);
    return result;
}

}  // namespace

TEST_F(Field, HasTheTextBehindTheColonTrimmed) {
    constexpr ValueCase cases[] = {
        {"Version", "Version: 1.2", "1.2"},
        {"Version", "Version:1.2", "1.2"},
        {"Version", "Version:  \t1.2 \v\f\r", "1.2"},
        {"Version", "Version: a  b: c", "a  b: c"},
        {"Version", "Version: \xc3\xa4\xa0", "\xc3\xa4\xa0"},
        {"Version", "Version : 1.2", ": 1.2"},
        {"MD5", "MD5Sum: abc", "um: abc"},
        {"", "?x", "x"},
    };
    for (const ValueCase &test : cases) {
        char value[32] = "before";
        EXPECT_EQ(cmpnt_parse_str_field(test.field, test.line, value, sizeof(value)), 0)
            << test.line;
        EXPECT_STREQ(value, test.value) << test.line;
    }
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(Field, WithoutAValueLeavesTheDestination) {
    for (const char *line : {"Version:", "Version: \t\r", "Version", "Version\0stale", "Ver", ""}) {
        char value[32] = "before";
        forget_log();
        EXPECT_EQ(cmpnt_parse_str_field("Version", line, value, sizeof(value)), -1) << line;
        EXPECT_STREQ(value, "before") << line;
        EXPECT_TRUE(
            logged("CMPNT_TRACE", "cmpnt_parse_str_field",
                   std::string("parse_simple fail, field(Version), line(") + line + ").\n"));
        EXPECT_EQ(trace_lines().size(), 1u);
    }
}

TEST_F(Field, DoesNotReadBehindALineThatIsTheNameAlone) {
    const char line[] = "Version\0 stale text of a longer line";
    EXPECT_EQ(field_value(line, 7, 7).length, 0u);
    EXPECT_EQ(field_value(line, 7, 20).length, 0u);
    EXPECT_EQ(field_value(line, 7, 3).length, 3u);
}

TEST_F(Field, IsCutToTheDestination) {
    char value[4];
    EXPECT_EQ(cmpnt_parse_str_field("Version", "Version: 1.2.3", value, sizeof(value)), 0);
    EXPECT_STREQ(value, "1.2");
    EXPECT_EQ(cmpnt_parse_str_field("Version", "Version: 1.2.3", value, 1), 0);
    EXPECT_STREQ(value, "");
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(Field, ZeroesTheDestinationFirst) {
    char value[16];
    memset(value, 'x', sizeof(value));
    EXPECT_EQ(cmpnt_parse_str_field("Version", "Version: 1", value, 15), 0);
    EXPECT_EQ(std::string(value, sizeof(value)), "1" + std::string(14, '\0') + "x");
}

TEST_F(Field, RefusesNullAndRoomForNothing) {
    char value[8] = "before";
    EXPECT_EQ(cmpnt_parse_str_field(nullptr, "Version: 1", value, sizeof(value)), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_parse_str_field", "input param is null.\n"));
    EXPECT_EQ(cmpnt_parse_str_field("Version", nullptr, value, sizeof(value)), -1);
    EXPECT_EQ(cmpnt_parse_str_field("Version", "Version: 1", nullptr, sizeof(value)), -1);
    EXPECT_EQ(traced("error", "cmpnt_parse_str_field", "input param is null.\n"), 3);
    EXPECT_EQ(cmpnt_parse_str_field("Version", "Version: 1", value, 0), -1);
    EXPECT_EQ(cmpnt_parse_str_field("Version", "Version: 1", value, -1), -1);
    EXPECT_STREQ(value, "before");
    EXPECT_EQ(trace_lines().size(), 3u);
}

TEST_F(Field, HasNoValueWithoutMemory) {
    char value[8] = "before";
    fault::fail("strndup", 1, ENOMEM);
    EXPECT_EQ(cmpnt_parse_str_field("Version", "Version: 1", value, sizeof(value)), -1);
    EXPECT_STREQ(value, "before");
    EXPECT_EQ(trace_messages(),
              (std::vector<std::string>{
                  "error xstrndup: param is null.\n", "error parse_simple: param is null.\n",
                  "trace cmpnt_parse_str_field: parse_simple fail, field(Version), "
                  "line(Version: 1).\n"}));
    EXPECT_TRUE(logged("CMPNT_ERROR", "xstrndup", "param is null.\n"));
    EXPECT_TRUE(logged("CMPNT_ERROR", "parse_simple", "param is null.\n"));
}

TEST_F(Field, IsKnownByItsTrimmedKey) {
    for (const char *line :
         {"Package: foo", "Package:", "Package", " \tPackage \r: foo", "Package::"}) {
        EXPECT_EQ(cmpnt_is_field("Package", line, ":"), 1) << line;
    }
    for (const char *line : {"package: foo", "Packag: foo", "Packages: foo", "Package foo: bar",
                             ":Package", "", " ", "Pack age:", "Package=foo"}) {
        EXPECT_EQ(cmpnt_is_field("Package", line, ":"), 0) << line;
    }
    EXPECT_EQ(cmpnt_is_field("", " : foo", ":"), 1);
    EXPECT_TRUE(trace_messages().empty());
    EXPECT_EQ(fault::calls("calloc"), 0);
}

TEST_F(Field, IsSplitAtAnyOfTheSeparators) {
    EXPECT_EQ(cmpnt_is_field("Package", "Package=foo:bar", ":="), 1);
    EXPECT_EQ(cmpnt_is_field("Package=foo", "Package=foo:bar", ":"), 1);
    EXPECT_EQ(cmpnt_is_field("Package: foo", "Package: foo", ""), 1);
    EXPECT_EQ(cmpnt_is_field("Package", "Package: foo", ""), 0);
}

TEST_F(Field, IsNoneWithEightyPieces) {
    EXPECT_EQ(cmpnt_is_field("Package", with_colons(78).c_str(), ":"), 1);
    EXPECT_TRUE(trace_messages().empty());
    EXPECT_EQ(cmpnt_is_field("Package", with_colons(79).c_str(), ":"), 0);
    EXPECT_EQ(trace_messages(),
              (std::vector<std::string>{
                  "trace cmpnt_detach_install_queue: cmpnt_detach_install_queue count(80)\n",
                  "error cmpnt_is_field: cmpnt_detach_install_queue fail.\n"}));
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_is_field", "cmpnt_detach_install_queue fail.\n"));
    EXPECT_EQ(cmpnt_is_field("Other", with_colons(79).c_str(), ":"), 0);
    EXPECT_EQ(traced("error", "cmpnt_is_field", "cmpnt_detach_install_queue fail.\n"), 2);
}

TEST_F(Field, CountsPiecesInTheFirst1023CharactersAlone) {
    std::string line = with_colons(78);
    line.resize(1023, 'x');
    EXPECT_EQ(cmpnt_is_field("Package", (line + ":::").c_str(), ":"), 1);
    line[1022] = ':';
    EXPECT_EQ(cmpnt_is_field("Package", (line + "x").c_str(), ":"), 0);
}

TEST_F(Field, ComparesTheFirst1023CharactersAlone) {
    const std::string line(2000, 'x');
    EXPECT_EQ(cmpnt_is_field(line.substr(0, 1023).c_str(), line.c_str(), ":"), 1);
    EXPECT_EQ(cmpnt_is_field(line.substr(0, 1024).c_str(), line.c_str(), ":"), 0);
    EXPECT_EQ(cmpnt_is_field(line.substr(0, 1022).c_str(), line.c_str(), ":"), 0);
}

TEST_F(Field, OfNullIsNone) {
    EXPECT_EQ(cmpnt_is_field(nullptr, "Package: foo", ":"), 0);
    EXPECT_TRUE(trace_messages().empty());
    EXPECT_EQ(cmpnt_is_field("Package", nullptr, ":"), 0);
    EXPECT_EQ(cmpnt_is_field("Package", "Package: foo", nullptr), 0);
    EXPECT_EQ(traced("error", "cmpnt_detach_install_queue", "param is null\n"), 2);
    EXPECT_EQ(traced("error", "cmpnt_is_field", "cmpnt_detach_install_queue fail.\n"), 2);
}

TEST_F(Field, IsNoneWhenTheSplitRunsOutOfMemory) {
    fault::fail("calloc", 3, ENOMEM);
    EXPECT_EQ(cmpnt_is_field("Package", with_colons(90).c_str(), ":"), 0);
    EXPECT_EQ(traced("error", "cmpnt_detach_install_queue", "cmpnt_malloc_and_memory fail.\n"), 1);
    EXPECT_EQ(
        traced("trace", "cmpnt_detach_install_queue", "cmpnt_detach_install_queue count(80)\n"), 0);
    EXPECT_EQ(traced("error", "cmpnt_is_field", "cmpnt_detach_install_queue fail.\n"), 1);
}

TEST_F(Field, IsWhatTheSplitSays) {
    g_cmpnt_dbg_level = 0;
    std::mt19937 random(1);
    constexpr char alphabet[] = "PPPaa \t:;:";
    for (int i = 0; i < 3000; i++) {
        std::string line(random() % 10, ' ');
        for (char &c : line) {
            c = alphabet[random() % (sizeof(alphabet) - 1)];
        }
        line += std::string(i % 20 == 0 ? random() % 20 + 68 : 0, ':');
        for (const char *separators : {":", ":;"}) {
            for (const char *field : {"P", "Pa", ""}) {
                ASSERT_EQ(cmpnt_is_field(field, line.c_str(), separators),
                          is_field_by_splitting(field, line.c_str(), separators))
                    << field << " | " << line << " | " << separators;
            }
        }
    }
}

TEST_F(Field, LineIsBlankWhenEmptyOrWhiteSpaceAlone) {
    for (const char *line : {"", " ", "\t", "\r", "\v\f", " \t\r\n"}) {
        EXPECT_TRUE(line_is_blank(line));
    }
    for (const char *line : {"x", "  x", "x  ", "\xa0", "\x85", "\x01"}) {
        EXPECT_FALSE(line_is_blank(line));
    }
}
