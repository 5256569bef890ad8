#include <unistd.h>

#include "tests/support/device_test.hh"

class QuotedCopy : public DeviceTest {
protected:
    // Two paths below /tmp whose lengths add up to this.
    static std::pair<std::string, std::string> paths_of_length(size_t sum) {
        const std::string source = "/tmp/" + std::string(250, 's');
        const std::string directory = "/tmp/" + std::string(100, 'd') + "/";
        make_directories(directory);
        return {source, directory + std::string(sum - source.size() - directory.size(), 'n')};
    }
};

TEST_F(QuotedCopy, TakesBlanksAndParentheses) {
    write_file("/tmp/a file (1)", "text");
    EXPECT_EQ(cmpnt_cp_file("/tmp/a file (1)", "/tmp/its copy"), 0);
    EXPECT_EQ(read_file("/tmp/its copy"), "text");
}

TEST_F(QuotedCopy, OverwritesATarget) {
    write_file("/tmp/new", "new");
    write_file("/tmp/old", "something old");
    EXPECT_EQ(cmpnt_cp_file("/tmp/new", "/tmp/old"), 0);
    EXPECT_EQ(read_file("/tmp/old"), "new");
}

TEST_F(QuotedCopy, TakesDirectories) {
    write_file("/tmp/dir/sub/file", "text");
    EXPECT_EQ(cmpnt_cp_file("/tmp/dir", "/tmp/copy"), 0);
    EXPECT_EQ(read_file("/tmp/copy/sub/file"), "text");
}

TEST_F(QuotedCopy, OfAMissingSourceIsNotTried) {
    EXPECT_EQ(cmpnt_cp_file("/tmp/missing", "/tmp/copy"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_cp_file", "file(/tmp/missing) is no exist.\n"));
    EXPECT_EQ(fault::calls("popen"), 0);
}

TEST_F(QuotedCopy, ReportsAFailedCommand) {
    write_file("/tmp/file", "text");
    EXPECT_EQ(cmpnt_cp_file("/tmp/file", "/tmp/missing/copy"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_cp_file",
                       "cmpnt_popen_cmd_run_not_deal_brk fail, cmd(cp -rf).\n"));
}

TEST_F(QuotedCopy, TakesPathsThatFitTogether) {
    const auto [source, copy] = paths_of_length(514);
    write_file(source, "text");
    EXPECT_EQ(cmpnt_cp_file(source.c_str(), copy.c_str()), 0);
    EXPECT_EQ(read_file(copy), "text");
}

TEST_F(QuotedCopy, RefusesPathsThatDoNot) {
    const auto [source, copy] = paths_of_length(515);
    write_file(source, "text");
    EXPECT_EQ(cmpnt_cp_file(source.c_str(), copy.c_str()), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_cp_file", "cmpnt_snprintf fail\n"));
    EXPECT_EQ(fault::calls("popen"), 0);
}

TEST_F(QuotedCopy, RefusesNull) {
    write_file("/tmp/file", "text");
    EXPECT_EQ(cmpnt_cp_file(nullptr, "/tmp/copy"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_cp_file", "path is null.\n"));
    EXPECT_EQ(cmpnt_cp_file("/tmp/file", nullptr), -1);
    EXPECT_EQ(traced("error", "cmpnt_cp_file", "path is null.\n"), 2);
}
