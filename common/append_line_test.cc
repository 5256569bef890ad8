#include <errno.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/deadline.hh"
#include "tests/support/device_test.hh"

class AppendLine : public DeviceTest {};

TEST_F(AppendLine, CreatesTheFileAndItsDirectories) {
    umask(0);
    EXPECT_EQ(cmpnt_write_to_file("first", "/tmp/a/b/file"), 0);
    EXPECT_EQ(read_file("/tmp/a/b/file"), "first\n");
    EXPECT_EQ(mode_of("/tmp/a/b/file"), 0755);
}

TEST_F(AppendLine, AppendsToAFileThatIsThere) {
    write_file("/tmp/file", "old\n");
    chmod("/tmp/file", 0640);
    EXPECT_EQ(cmpnt_write_to_file("new", "/tmp/file"), 0);
    EXPECT_EQ(cmpnt_write_to_file("", "/tmp/file"), 0);
    EXPECT_EQ(read_file("/tmp/file"), "old\nnew\n\n");
    EXPECT_EQ(mode_of("/tmp/file"), 0640);
}

TEST_F(AppendLine, CutsTheLineAt1023BytesWithoutAWord) {
    const struct {
        size_t length;
        size_t kept;
        bool newline;
    } cases[] = {{1021, 1021, true}, {1022, 1022, true}, {1023, 1023, false}, {5000, 1023, false}};
    for (const auto &c : cases) {
        remove_tree("/tmp/file");
        EXPECT_EQ(cmpnt_write_to_file(std::string(c.length, 't').c_str(), "/tmp/file"), 0);
        EXPECT_EQ(read_file("/tmp/file"), std::string(c.kept, 't') + (c.newline ? "\n" : ""))
            << c.length;
    }
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(AppendLine, SyncsTheLine) {
    for (int i = 0; i < 2; i++) {
        fault::reset();
        EXPECT_EQ(cmpnt_write_to_file("text", "/tmp/file"), 0);
        EXPECT_EQ(fault::order_of({"write", "fsync", "close"}), "write fsync close");
    }
}

TEST_F(AppendLine, RefusesNull) {
    EXPECT_EQ(cmpnt_write_to_file(nullptr, "/tmp/file"), -1);
    EXPECT_TRUE(logged("CLIENT_ERROR", "cmpnt_write_to_file", "param is null.\n"));
    forget_log();
    EXPECT_EQ(cmpnt_write_to_file("text", nullptr), -1);
    EXPECT_TRUE(logged("CLIENT_ERROR", "cmpnt_write_to_file", "param is null.\n"));
    EXPECT_FALSE(exists("/tmp/file"));
}

TEST_F(AppendLine, DoesNotCreateWhatADanglingLinkNames) {
    ASSERT_EQ(symlink("/tmp/nowhere", "/tmp/link"), 0);
    EXPECT_EQ(cmpnt_write_to_file("text", "/tmp/link"), -1);
    EXPECT_TRUE(logged("CLIENT_ERROR", "cmpnt_write_to_file",
                       "open file(/tmp/link) fail, error(No such file or directory).\n"));
    EXPECT_FALSE(exists("/tmp/nowhere"));
}

TEST_F(AppendLine, TellsWhyTheFileCannotBeCreated) {
    write_file("/tmp/plain", "");
    EXPECT_EQ(cmpnt_write_to_file("text", "/tmp/plain/below/file"), -1);
    EXPECT_TRUE(
        logged("CMPNT_ERROR", "cmpnt_mkdir", "mkdir error, dir(/tmp/plain/below), errno(20)\n"));
    EXPECT_TRUE(logged("CLIENT_ERROR", "cmpnt_write_to_file",
                       "open file(/tmp/plain/below/file) fail, error(Not a directory).\n"));
}

TEST_F(AppendLine, OpensAFileWhoseDirectoryCannotBeMadeAgain) {
    make_directories("/tmp/a");
    fault::fail("opendir", 1, EMFILE);  // is_dir, so that the directory looks missing
    fault::fail("mkdir", 1, EIO, 9);
    EXPECT_EQ(cmpnt_write_to_file("text", "/tmp/a/file"), 0);
    EXPECT_EQ(read_file("/tmp/a/file"), "text\n");
}

TEST_F(AppendLine, SurvivesAPathThatIsTooLong) {
    EXPECT_EQ(cmpnt_write_to_file("text", ("/tmp/" + std::string(5000, 'p')).c_str()), -1);
    EXPECT_EQ(trace_lines().back().message.substr(0, 15), "open file(/tmp/");
}

TEST_F(AppendLine, MakesADirectoryOfAPathWithoutADirectoryPart) {
    ASSERT_EQ(chdir("/tmp"), 0);
    EXPECT_EQ(cmpnt_write_to_file("text", "bare"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "get_path_exclude_file_name", "str is null.\n"));
    EXPECT_TRUE(logged("CLIENT_ERROR", "cmpnt_write_to_file",
                       "open file(bare) fail, error(Is a directory).\n"));
    EXPECT_EQ(is_dir("/tmp/bare"), 1);
    ASSERT_EQ(chdir("/"), 0);
}

TEST_F(AppendLine, TakesHostileNamesAndTextsAsTheyAre) {
    const std::string path = "/tmp/a 'b' \"c\" $(touch x)\n(d)";
    EXPECT_EQ(cmpnt_write_to_file("%s %n $(text)", path.c_str()), 0);
    EXPECT_EQ(read_file(path), "%s %n $(text)\n");
}

TEST_F(AppendLine, CountsALostWriteAsWritten) {
    write_file("/tmp/file", "old\n");
    fault::fail("write", 1, ENOSPC);
    EXPECT_EQ(cmpnt_write_to_file("lost", "/tmp/file"), 0);
    EXPECT_EQ(read_file("/tmp/file"), "old\n");
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(AppendLine, LogsAFailedSyncOrCloseAndSucceeds) {
    fault::fail("fsync", 1, EIO);
    EXPECT_EQ(cmpnt_write_to_file("text", "/tmp/file"), 0);
    EXPECT_EQ(trace_lines().at(0).function, "cmpnt_fsync");
    forget_log();
    fault::fail("close", 1, EIO);
    EXPECT_EQ(cmpnt_write_to_file("text", "/tmp/file"), 0);
    EXPECT_EQ(trace_lines().at(0).function, "cmpnt_close");
    EXPECT_EQ(read_file("/tmp/file"), "text\ntext\n");
}

TEST_F(AppendLine, DoesNotWaitForTheReaderOfAPipe) {
    ASSERT_EQ(mkfifo("/tmp/pipe", 0600), 0);
    const Deadline deadline;
    EXPECT_EQ(cmpnt_write_to_file("text", "/tmp/pipe"), -1);
    EXPECT_TRUE(logged("CLIENT_ERROR", "cmpnt_write_to_file",
                       "open file(/tmp/pipe) fail, error(No such device or address).\n"));
}

TEST_F(AppendLine, LeavesNoDescriptorOpen) {
    const int before = open_descriptors();
    EXPECT_EQ(cmpnt_write_to_file("text", "/tmp/file"), 0);
    EXPECT_EQ(cmpnt_write_to_file("text", "/tmp/file"), 0);
    EXPECT_EQ(open_descriptors(), before);
}
