#include <unistd.h>

#include "tests/support/device_test.hh"

namespace {

struct FileCommand {
    const char *function;
    int32_t (*run)(const char *source, const char *destination);
    const char *trace_tag;
    const char *error_tag;
    bool source_stays;
};

constexpr FileCommand commands[] = {
    {"cmpnt_copy_file_by_popen", cmpnt_copy_file_by_popen, "CMPNT_TRACE", "CMPNT_ERROR", true},
    {"cmpnt_rename_file_by_popen", cmpnt_rename_file_by_popen, "BEGIN_TRACE", "BEGIN_ERROR", false},
};

}  // namespace

class ShellCopy : public DeviceTest {};

TEST_F(ShellCopy, CopiesOrMovesAFileOverAnExistingOne) {
    for (const FileCommand &command : commands) {
        write_file("/tmp/source", "new");
        write_file("/tmp/destination", "old");
        EXPECT_EQ(command.run("/tmp/source", "/tmp/destination"), 0);
        EXPECT_EQ(read_file("/tmp/destination"), "new");
        EXPECT_EQ(exists("/tmp/source"), command.source_stays);
    }
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(ShellCopy, CopiesOrMovesADirectory) {
    for (const FileCommand &command : commands) {
        remove_tree("/tmp/b");
        write_file("/tmp/a/folder/file", "text");
        EXPECT_EQ(command.run("/tmp/a", "/tmp/b"), 0);
        EXPECT_EQ(read_file("/tmp/b/folder/file"), "text");
        EXPECT_EQ(exists("/tmp/a"), command.source_stays);
    }
}

TEST_F(ShellCopy, TakesParenthesesInNames) {
    for (const FileCommand &command : commands) {
        write_file("/tmp/name(1)", "text");
        EXPECT_EQ(command.run("/tmp/name(1)", "/tmp/name(2)"), 0);
        EXPECT_EQ(read_file("/tmp/name(2)"), "text");
    }
}

TEST_F(ShellCopy, RefusesNull) {
    for (const FileCommand &command : commands) {
        EXPECT_EQ(command.run(nullptr, "/tmp/b"), -1);
        EXPECT_EQ(command.run("/tmp/a", nullptr), -1);
        EXPECT_TRUE(logged(command.error_tag, command.function, "param is null.\n"));
        EXPECT_EQ(traced("error", command.function, "param is null.\n"), 2);
    }
    EXPECT_EQ(fault::calls("popen"), 0);
}

TEST_F(ShellCopy, OnlyTracesAMissingSource) {
    for (const FileCommand &command : commands) {
        EXPECT_EQ(command.run("/tmp/missing", "/tmp/b"), -1);
        EXPECT_TRUE(
            logged(command.trace_tag, command.function, "file(/tmp/missing) is not exist.\n"));
    }
    EXPECT_EQ(fault::calls("popen"), 0);
}

TEST_F(ShellCopy, TellsTheArgumentsOfAFailedCommand) {
    for (const FileCommand &command : commands) {
        write_file("/tmp/source", "text");
        EXPECT_EQ(command.run("/tmp/source", "/no/such/folder/b 2>/dev/null"), -1);
        EXPECT_TRUE(logged(command.error_tag, command.function,
                           "cmpnt_popen_cmd_run fail, buf(/tmp/source /no/such/folder/b "
                           "2>/dev/null).\n"));
        EXPECT_TRUE(exists("/tmp/source"));
    }
}

TEST_F(ShellCopy, CutsTheTwoPathsTogetherWithoutAWord) {
    const std::string source = "/tmp/source";
    const std::string destination = "/tmp/" + std::string(250, 'd');
    const std::string cut = destination.substr(0, 259 - source.size() - 1);
    for (const FileCommand &command : commands) {
        write_file(source, "text");
        EXPECT_EQ(command.run(source.c_str(), destination.c_str()), 0);
        EXPECT_EQ(read_file(cut), "text");
        EXPECT_FALSE(exists(destination));
        remove_tree(cut);
    }
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(ShellCopy, TakesADanglingLinkForAFile) {
    ASSERT_EQ(symlink("/tmp/nowhere", "/tmp/link"), 0);
    EXPECT_EQ(cmpnt_rename_file_by_popen("/tmp/link", "/tmp/moved"), 0);
    EXPECT_TRUE(exists("/tmp/moved"));
}
