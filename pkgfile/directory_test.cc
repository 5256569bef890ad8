#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/device_test.hh"

class DirectoryTest : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        umask(022);
    }

    void TearDown() override {
        ASSERT_EQ(chdir("/"), 0);
        umask(022);
        DeviceTest::TearDown();
    }

    static std::string path_of_length(size_t length) {
        std::string path = "/tmp/" + std::string(150, 'd') + "/";
        return path + std::string(length - path.size(), 'e');
    }

    static void expect_silence() {
        EXPECT_FALSE(exists(trace_path()));
        EXPECT_TRUE(platform.syslog.empty());
    }
};

TEST_F(DirectoryTest, IsDirKnowsDirectoriesAndLinksToThem) {
    write_file("/tmp/dir/file", "x");
    ASSERT_EQ(symlink("/tmp/dir", "/tmp/link"), 0);
    ASSERT_EQ(symlink("/tmp/dir/file", "/tmp/file_link"), 0);
    ASSERT_EQ(symlink("/tmp/nowhere", "/tmp/dangling"), 0);
    EXPECT_EQ(is_dir("/tmp/dir"), 1);
    EXPECT_EQ(is_dir("/tmp/dir/"), 1);
    EXPECT_EQ(is_dir("/tmp/link"), 1);
    EXPECT_EQ(is_dir("/tmp/dir/file"), 0);
    EXPECT_EQ(is_dir("/tmp/file_link"), 0);
    EXPECT_EQ(is_dir("/tmp/dangling"), 0);
    EXPECT_EQ(is_dir("/tmp/missing"), 0);
    EXPECT_EQ(is_dir(""), 0);
    expect_silence();
}

TEST_F(DirectoryTest, IsDirClosesWhatItOpened) {
    EXPECT_EQ(is_dir("/tmp"), 1);
    EXPECT_EQ(fault::calls("closedir"), 1);
}

TEST_F(DirectoryTest, IsDirRefusesNull) {
    EXPECT_EQ(is_dir(nullptr), 0);
    EXPECT_TRUE(logged("CMPNT_ERROR", "is_dir", "dir_path is null.\n"));
}

TEST_F(DirectoryTest, MkdirMakesAllThatIsMissing) {
    EXPECT_EQ(cmpnt_mkdir("/tmp/a/b/c"), 0);
    EXPECT_EQ(is_dir("/tmp/a/b/c"), 1);
    EXPECT_EQ(cmpnt_mkdir("/tmp/a/d/"), 0);
    EXPECT_EQ(is_dir("/tmp/a/d"), 1);
    EXPECT_EQ(cmpnt_mkdir("/tmp//e///f"), 0);
    EXPECT_EQ(is_dir("/tmp/e/f"), 1);
    expect_silence();
}

TEST_F(DirectoryTest, MkdirTakesARelativePath) {
    ASSERT_EQ(chdir("/tmp"), 0);
    EXPECT_EQ(cmpnt_mkdir("x/y"), 0);
    EXPECT_EQ(cmpnt_mkdir("z"), 0);
    EXPECT_EQ(is_dir("/tmp/x/y"), 1);
    EXPECT_EQ(is_dir("/tmp/z"), 1);
}

TEST_F(DirectoryTest, MkdirHasItsModeNarrowedByTheUmask) {
    umask(0);
    EXPECT_EQ(cmpnt_mkdir("/tmp/open/wide"), 0);
    EXPECT_EQ(mode_of("/tmp/open"), 0777);
    EXPECT_EQ(mode_of("/tmp/open/wide"), 0777);
    umask(027);
    EXPECT_EQ(cmpnt_mkdir("/tmp/narrow"), 0);
    EXPECT_EQ(mode_of("/tmp/narrow"), 0750);
}

TEST_F(DirectoryTest, MkdirMakesNothingWhereItIsThere) {
    make_directories("/tmp/there");
    for (const char *path : {"/", "/tmp", "/tmp/there", "/tmp/there/", "//"}) {
        EXPECT_EQ(cmpnt_mkdir(path), 0) << path;
    }
    EXPECT_EQ(fault::calls("mkdir"), 0);
    expect_silence();
}

TEST_F(DirectoryTest, MkdirOfNothingIsDone) {
    EXPECT_EQ(cmpnt_mkdir(""), 0);
    EXPECT_EQ(fault::calls("mkdir"), 0);
    expect_silence();
}

TEST_F(DirectoryTest, MkdirTakes258BytesAndRefuses259) {
    const std::string longest = path_of_length(258);
    EXPECT_EQ(cmpnt_mkdir(longest.c_str()), 0);
    EXPECT_EQ(is_dir(longest.c_str()), 1);
    for (size_t length : {259, 260, 400}) {
        forget_log();
        const std::string path = path_of_length(length);
        EXPECT_EQ(cmpnt_mkdir(path.c_str()), -1);
        EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_mkdir", "param is null\n"));
        EXPECT_FALSE(exists(path));
    }
}

TEST_F(DirectoryTest, MkdirRefusesNull) {
    EXPECT_EQ(cmpnt_mkdir(nullptr), -1);
    EXPECT_EQ(trace_messages(), (std::vector<std::string>{"error cmpnt_mkdir: param is null\n"}));
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_mkdir", "param is null\n"));
}

TEST_F(DirectoryTest, MkdirLetsAPlainFileOfThatNamePass) {
    write_file("/tmp/file", "text");
    EXPECT_EQ(cmpnt_mkdir("/tmp/file"), 0);
    EXPECT_EQ(read_file("/tmp/file"), "text");
    expect_silence();
}

TEST_F(DirectoryTest, MkdirFailsBelowAPlainFileAndNamesThePathGiven) {
    write_file("/tmp/file", "text");
    EXPECT_EQ(cmpnt_mkdir("/tmp/file/a/b"), -1);
    EXPECT_TRUE(
        logged("CMPNT_ERROR", "cmpnt_mkdir", "mkdir error, dir(/tmp/file/a/b), errno(20)\n"));
    EXPECT_EQ(read_file("/tmp/file"), "text");
}

TEST_F(DirectoryTest, MkdirFailsOnADanglingLink) {
    ASSERT_EQ(symlink("/tmp/nowhere", "/tmp/link"), 0);
    EXPECT_EQ(cmpnt_mkdir("/tmp/link"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_mkdir", "mkdir error, dir(/tmp/link), errno(17)\n"));
    EXPECT_FALSE(exists("/tmp/nowhere"));
}

TEST_F(DirectoryTest, MkdirKeepsWhatItMadeBeforeAFailure) {
    fault::fail("mkdir", 2, ENOSPC);
    EXPECT_EQ(cmpnt_mkdir("/tmp/a/b/c"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_mkdir", "mkdir error, dir(/tmp/a/b/c), errno(28)\n"));
    EXPECT_EQ(is_dir("/tmp/a"), 1);
    EXPECT_FALSE(exists("/tmp/a/b"));
}

TEST_F(DirectoryTest, ChdirWorksInTheDirectory) {
    make_directories("/tmp/work");
    EXPECT_EQ(cmpnt_chdir("/tmp/work"), 0);
    char path[CMPNT_PATH_SIZE] = {};
    EXPECT_STREQ(getcwd(path, sizeof(path)), "/tmp/work");
    expect_silence();
}

TEST_F(DirectoryTest, ChdirReportsFailure) {
    EXPECT_EQ(cmpnt_chdir("/tmp/missing"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_chdir", "chdir to (/tmp/missing) error, errno(2)\n"));
    EXPECT_EQ(cmpnt_chdir(nullptr), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_chdir", "param is null\n"));
}
