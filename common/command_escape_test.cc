#include <errno.h>
#include <stdlib.h>

#include "common/command.hh"
#include "tests/support/device_test.hh"

namespace {

// "null" for a failure.
std::string escape(const std::string &arguments) {
    char *escaped = cmpnt_replace_brackets_str(arguments.c_str());
    std::string text = escaped == nullptr ? "null" : escaped;
    free(escaped);
    return text;
}

}  // namespace

class CommandEscape : public DeviceTest {};

TEST_F(CommandEscape, PutsABackslashBeforeEachParenthesis) {
    const struct {
        const char *arguments;
        const char *escaped;
    } cases[] = {
        {"", ""},
        {"name.ipk", "name.ipk"},
        {"name(1).ipk", "name\\(1\\).ipk"},
        {"(", "\\("},
        {")", "\\)"},
        {"))((", "\\)\\)\\(\\("},
        {"a\\(b", "a\\\\(b"},
        {"[a]{b} \"c\"", "[a]{b} \"c\""},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(escape(c.arguments), c.escaped);
    }
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(CommandEscape, HasRoomFor259) {
    EXPECT_EQ(escape(std::string(259, '(') + "end").size(), 2 * 259u + 3);
    EXPECT_EQ(escape(std::string(259, ')') + "end").size(), 2 * 259u + 3);
    EXPECT_EQ(escape(std::string(130, '(') + std::string(129, ')')).size(), 2 * 259u);
}

TEST_F(CommandEscape, LosesTheLastCharacterAt260) {
    const std::string escaped = escape(std::string(260, '(') + "end");
    EXPECT_EQ(escaped.size(), 2 * 260u + 2);
    EXPECT_EQ(escaped.substr(escaped.size() - 3), "(en");
}

TEST_F(CommandEscape, FailsAt261) {
    EXPECT_EQ(escape(std::string(261, '(')), "null");
    EXPECT_TRUE(
        logged("SERVER_ERROR", "cmpnt_replace_brackets_str", "cmpnt_replace fail, str_rep().\n"));
    forget_log();
    EXPECT_EQ(escape(std::string(261, ')')), "null");
    EXPECT_TRUE(
        logged("CMPNT_ERROR", "cmpnt_replace_brackets_str", "cmpnt_replace fail, str_rep().\n"));
    forget_log();
    EXPECT_EQ(escape(std::string(200, '(') + std::string(61, ')')), "null");
    EXPECT_TRUE(
        logged("CMPNT_ERROR", "cmpnt_replace_brackets_str", "cmpnt_replace fail, str_rep().\n"));
}

TEST_F(CommandEscape, FailsWithoutMemory) {
    for (const char *arguments : {"plain", "(1)"}) {
        forget_log();
        fault::fail("calloc", 1, ENOMEM);
        EXPECT_EQ(escape(arguments), "null");
        EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_replace_brackets_str", "cmpnt_malloc fail.\n"));
    }
}

TEST_F(CommandEscape, FailsWithoutMemoryForTheReplacement) {
    fault::fail("calloc", 2, ENOMEM);
    EXPECT_EQ(escape("(1)"), "null");
    EXPECT_TRUE(logged("SERVER_ERROR", "cmpnt_replace_brackets_str",
                       "cmpnt_replace fail, str_rep((1)).\n"));
    fault::fail("calloc", 3, ENOMEM);
    EXPECT_EQ(escape("(1)"), "null");
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_replace_brackets_str",
                       "cmpnt_replace fail, str_rep(\\(1)).\n"));
}
