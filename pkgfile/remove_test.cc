#include <string.h>
#include <unistd.h>

#include "tests/support/device_test.hh"

class RemoveTest : public DeviceTest {
protected:
    static testing::AssertionResult says(const std::string &message) {
        return logged("CMPNT_ERROR", "cmpnt_remove", message);
    }

    // A directory below /tmp whose path has this many bytes.
    static std::string directory_of_length(size_t length) {
        std::string path = "/tmp";
        while (length - path.size() > 201) {
            path += "/" + std::string(100, 'd');
        }
        path += "/" + std::string(length - path.size() - 1, 'e');
        make_directories(path);
        return path;
    }
};

TEST_F(RemoveTest, OfWhatIsNotThereSucceedsSilently) {
    EXPECT_EQ(cmpnt_remove("/tmp/missing"), 0);
    EXPECT_EQ(cmpnt_remove("/tmp/missing/below"), 0);
    EXPECT_EQ(cmpnt_remove(""), 0);
    EXPECT_EQ(cmpnt_remove(std::string(5000, 'x').c_str()), 0);
    EXPECT_EQ(cmpnt_remove((std::string(5000, 'x') + "/").c_str()), 0);
    EXPECT_FALSE(exists(trace_path()));
    EXPECT_TRUE(platform.syslog.empty());
}

TEST_F(RemoveTest, TakesAFile) {
    write_file("/tmp/file", "x");
    EXPECT_EQ(cmpnt_remove("/tmp/file"), 0);
    EXPECT_FALSE(exists("/tmp/file"));
    EXPECT_FALSE(exists(trace_path()));  // what is found is not examined for being a link
}

TEST_F(RemoveTest, TakesAWholeTree) {
    write_file("/opt/tree/a/b/file", "x");
    write_file("/opt/tree/.hidden", "x");
    write_file("/opt/tree/..odd", "x");
    write_file("/opt/tree/with blank\n$(x)\"'", "x");
    make_directories("/opt/tree/empty");
    ASSERT_EQ(symlink("nowhere", "/opt/tree/dangling"), 0);
    EXPECT_EQ(cmpnt_remove("/opt/tree"), 0);
    EXPECT_EQ(names_in("/opt"), std::vector<std::string>());
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(RemoveTest, TakesALinkAndNeverItsTarget) {
    write_file("/opt/target/file", "x");
    ASSERT_EQ(symlink("/opt/target", "/opt/link"), 0);
    ASSERT_EQ(symlink("/opt/target", "/opt/slashed"), 0);
    make_directories("/opt/dir");
    ASSERT_EQ(symlink("/opt/target", "/opt/dir/inside"), 0);
    EXPECT_EQ(cmpnt_remove("/opt/link"), 0);
    EXPECT_EQ(cmpnt_remove("/opt/slashed///"), 0);
    EXPECT_EQ(cmpnt_remove("/opt/dir/"), 0);
    EXPECT_EQ(names_in("/opt"), std::vector<std::string>{"target"});
    EXPECT_TRUE(exists("/opt/target/file"));
}

TEST_F(RemoveTest, TakesALinkToADirectoryWhateverStandsBehindItsName) {
    for (const char *end : {"/", "/.", "/./", "//.//./", "/././."}) {
        write_file("/opt/target/file", "x");
        ASSERT_EQ(symlink("/opt/target", "/opt/link"), 0);
        EXPECT_EQ(cmpnt_remove((std::string("/opt/link") + end).c_str()), 0);
        EXPECT_EQ(names_in("/opt"), std::vector<std::string>{"target"}) << end;
        EXPECT_TRUE(exists("/opt/target/file")) << end;
    }
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(RemoveTest, LeavesWhatIsNotThereUnderThePathGiven) {
    write_file("/opt/file", "x");
    ASSERT_EQ(symlink("/opt/nowhere", "/opt/dangling"), 0);
    ASSERT_EQ(symlink("/opt/file", "/opt/link"), 0);
    for (const char *path : {"/opt/file/", "/opt/file/.", "/opt/dangling/", "/opt/dangling/.",
                             "/opt/link/", "/opt/link/."}) {
        EXPECT_EQ(cmpnt_remove(path), 0) << path;
    }
    EXPECT_EQ(names_in("/opt"), (std::vector<std::string>{"dangling", "file", "link"}));
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(RemoveTest, EmptiesADirectoryThatADotNames) {
    ASSERT_EQ(symlink("/opt", "/opt/link"), 0);
    for (const std::string path : {"/opt/dir/.", "/opt/link/dir/."}) {
        for (const char *slashes : {"", "//"}) {
            forget_log();
            write_file("/opt/dir/file", "x");
            EXPECT_EQ(cmpnt_remove((path + slashes).c_str()), 0);
            EXPECT_TRUE(names_in("/opt/dir").empty());
            EXPECT_TRUE(
                says("rmdir error, target(" + path + "), error(" + strerror(EINVAL) + ")\n"));
        }
    }
}

TEST_F(RemoveTest, TakesADirectoryWithSlashesBehindItsName) {
    write_file("/opt/dir/file", "x");
    EXPECT_EQ(cmpnt_remove("/opt/dir//"), 0);
    EXPECT_FALSE(exists("/opt/dir"));
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(RemoveTest, TakesADanglingLink) {
    ASSERT_EQ(symlink("/tmp/nowhere", "/tmp/link"), 0);
    EXPECT_EQ(cmpnt_remove("/tmp/link"), 0);
    EXPECT_FALSE(exists("/tmp/link"));
}

TEST_F(RemoveTest, RefusesNull) {
    EXPECT_EQ(cmpnt_remove(nullptr), -1);
    EXPECT_TRUE(says("param is null\n"));
}

TEST_F(RemoveTest, FailsWhenItCannotLook) {
    write_file("/tmp/file", "x");
    fault::fail("lstat64", 2, EACCES);  // the first finds that it exists
    EXPECT_EQ(cmpnt_remove("/tmp/file"), -1);
    EXPECT_TRUE(
        says("lstat error, target(/tmp/file), errno(" + std::string(strerror(EACCES)) + ")\n"));
    EXPECT_TRUE(exists("/tmp/file"));
}

TEST_F(RemoveTest, FailsWhenTheDirectoryDoesNotOpen) {
    write_file("/tmp/dir/file", "x");
    fault::fail("opendir", 1, EMFILE);
    EXPECT_EQ(cmpnt_remove("/tmp/dir"), -1);
    EXPECT_TRUE(says("opendir(/tmp/dir) error, error(" + std::string(strerror(EMFILE)) + ").\n"));
    EXPECT_TRUE(exists("/tmp/dir/file"));
}

TEST_F(RemoveTest, SwallowsAFileThatStays) {
    write_file("/tmp/file", "x");
    fault::fail("remove", 1, EBUSY);
    EXPECT_EQ(cmpnt_remove("/tmp/file"), 0);
    EXPECT_TRUE(
        says("remove error, target(/tmp/file), error(" + std::string(strerror(EBUSY)) + ")\n"));
}

TEST_F(RemoveTest, SwallowsADirectoryThatStays) {
    write_file("/tmp/dir/file", "x");
    fault::fail("remove", 1, EBUSY);
    EXPECT_EQ(cmpnt_remove("/tmp/dir"), 0);
    EXPECT_TRUE(
        says("remove error, target(/tmp/dir/file), error(" + std::string(strerror(EBUSY)) + ")\n"));
    EXPECT_TRUE(
        says("rmdir error, target(/tmp/dir), error(" + std::string(strerror(ENOTEMPTY)) + ")\n"));
    EXPECT_TRUE(exists("/tmp/dir/file"));
}

TEST_F(RemoveTest, GoesOnAfterAChildThatFails) {
    make_directories("/tmp/dir/a");
    make_directories("/tmp/dir/b");
    fault::fail("opendir", 2, EMFILE);  // one of the two
    EXPECT_EQ(cmpnt_remove("/tmp/dir"), 0);
    EXPECT_TRUE(says("cmpnt_remove error.\n"));
    EXPECT_EQ(names_in("/tmp/dir").size(), 1u);
}

TEST_F(RemoveTest, GoesOnWhenTheDirectoryDoesNotClose) {
    write_file("/tmp/dir/file", "x");
    fault::fail("closedir", 1, EBADF);
    EXPECT_EQ(cmpnt_remove("/tmp/dir"), 0);
    EXPECT_TRUE(says("closedir error, error(" + std::string(strerror(EBADF)) + ").\n"));
    EXPECT_FALSE(exists("/tmp/dir"));
}

TEST_F(RemoveTest, TakesChildrenWhosePathFits) {
    const std::string directory = directory_of_length(509);
    write_file(directory + "/x", "x");  // 511 bytes
    EXPECT_EQ(cmpnt_remove(directory.c_str()), 0);
    EXPECT_FALSE(exists(directory));
}

TEST_F(RemoveTest, LeavesChildrenWhosePathDoesNotFit) {
    // Cut, these paths would be the child's first letters, the directory with a slash, the directory.
    for (size_t length : {508, 510, 511}) {
        forget_log();
        const std::string directory = directory_of_length(length);
        write_file(directory + "/abcdefgh", "x");
        EXPECT_EQ(cmpnt_remove(directory.c_str()), 0);
        EXPECT_TRUE(says("cmpnt_remove error.\n"));
        EXPECT_TRUE(exists(directory + "/abcdefgh")) << length;
        remove_tree("/tmp/" + std::string(100, 'd'));
    }
}

TEST_F(RemoveTest, TakesNoOtherPathForAChild) {
    const std::string directory = directory_of_length(600);
    const std::string other = directory.substr(0, 511);
    write_file(directory + "/file", "x");
    write_file(other + "/file", "x");
    EXPECT_EQ(cmpnt_remove(directory.c_str()), 0);
    EXPECT_TRUE(exists(directory + "/file"));
    EXPECT_TRUE(exists(other + "/file"));
}
