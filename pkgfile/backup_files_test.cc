#include <unistd.h>

#include "tests/support/device_test.hh"

namespace {

constexpr char handler[] = "cmpnt_parse_line";
const std::string root = "/var/cache/opkg/backup/data";

}  // namespace

class BackupFiles : public DeviceTest {
protected:
    static int32_t back_up(const std::string &line, int32_t mode = CMPNT_PARSE_BACKUP_FILES) {
        cmpnt_control_info record = {};
        cmpnt_file_param param;
        set_file_param(&param, mode, 0, 0, 0);
        std::string buffer = line;
        return cmpnt_parse_line(&record, &buffer[0], &param);
    }
};

TEST_F(BackupFiles, CopiesAFileIntoTheMirrorOfItsDirectory) {
    write_file("/opt/app/bin/tool", "text");
    EXPECT_EQ(back_up("/opt/app/bin/tool"), 0);
    EXPECT_EQ(read_file(root + "/opt/app/bin/tool"), "text");
    EXPECT_TRUE(logged("CMPNT_TRACE", handler, "backup base package, path(/opt/app/bin/tool).\n"));
}

TEST_F(BackupFiles, RecreatesADirectoryWithoutItsFiles) {
    write_file("/opt/app/file", "text");
    EXPECT_EQ(back_up("/opt/app"), 0);
    EXPECT_TRUE(exists(root + "/opt/app"));
    EXPECT_TRUE(names_in(root + "/opt/app").empty());
    EXPECT_EQ(traced("trace", handler, "backup base package, path(/opt/app).\n"), 0);
}

TEST_F(BackupFiles, CopiesLinksToFilesDirectoriesAndNowhere) {
    write_file("/opt/file", "text");
    for (const char *target : {"/opt/file", "/opt", "/opt/nowhere"}) {
        unlink("/opt/link");
        remove_tree(root);
        ASSERT_EQ(symlink(target, "/opt/link"), 0);
        EXPECT_EQ(back_up("/opt/link"), 0) << target;
        char text[64] = {};
        EXPECT_GT(readlink((root + "/opt/link").c_str(), text, sizeof(text) - 1), 0) << target;
        EXPECT_STREQ(text, target);
    }
}

TEST_F(BackupFiles, CopiesAFileOfTheTopDirectory) {
    ASSERT_EQ(back_up("/.cmpnt-sandbox"), 0);
    EXPECT_TRUE(exists(root + "/.cmpnt-sandbox"));
}

TEST_F(BackupFiles, FailsForAPathThatIsNotThere) {
    EXPECT_EQ(back_up("/opt/none"), -4);
    EXPECT_TRUE(logged("CMPNT_ERROR", handler, "backup error, path(/opt/none).\n"));
    EXPECT_FALSE(exists(root));
}

TEST_F(BackupFiles, FailsForAMirrorPathTooLong) {
    const std::string deep = "/opt/" + std::string(230, 'd');
    write_file(deep + "/file", "text");
    for (const std::string &path : {deep, deep + "/file"}) {
        forget_log();
        EXPECT_EQ(back_up(path), -4);
        EXPECT_TRUE(logged("CMPNT_ERROR", handler, "cmpnt_snprintf fail\n"));
    }
}

TEST_F(BackupFiles, FailsForAMirrorPathThatFitsButCannotBeADirectory) {
    const std::string directory = "/opt/" + std::string(200, 'd') + "/";
    const std::string listed = directory + std::string(231 - directory.size(), 'e');
    const std::string holding = directory + std::string(232 - directory.size(), 'f');
    make_directories(listed);
    write_file(holding + "/file", "text");
    const struct {
        std::string path, mirror;
    } cases[] = {{listed, root + "/" + listed}, {holding + "/file", root + holding}};
    for (const auto &test : cases) {
        forget_log();
        ASSERT_EQ(test.mirror.size(), 259u);
        EXPECT_EQ(back_up(test.path), -4);
        EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_mkdir", "param is null\n"));
        EXPECT_TRUE(logged("CMPNT_ERROR", handler, "mkdir fail, dir_path(" + test.mirror + ").\n"));
    }
    EXPECT_FALSE(exists(root));
}

TEST_F(BackupFiles, FailsWhenTheMirrorCannotBeMade) {
    write_file("/opt/app/file", "text");
    write_file("/var/cache/opkg/backup", "a file in the way");
    EXPECT_EQ(back_up("/opt/app"), -4);
    EXPECT_TRUE(logged("CMPNT_ERROR", handler, "mkdir fail, dir_path(" + root + "//opt/app).\n"));
    EXPECT_EQ(back_up("/opt/app/file"), -4);
    EXPECT_TRUE(logged("CMPNT_ERROR", handler, "mkdir fail, dir_path(" + root + "/opt/app).\n"));
}

TEST_F(BackupFiles, FailsWhenTheCopyFails) {
    write_file("/opt/app/file", "text");
    make_directories(root + "/opt/app/file/in/the/way");
    EXPECT_EQ(back_up("/opt/app/file"), -4);
    EXPECT_TRUE(logged("CMPNT_ERROR", handler, "cmpnt_cp_file fail\n"));
}

TEST_F(BackupFiles, AreLeftAloneInOtherModes) {
    write_file("/opt/file", "text");
    for (const int32_t mode : {0, 1, 2, 3, 5, 6, 7}) {
        EXPECT_EQ(back_up("/opt/file", mode), 0);
    }
    EXPECT_FALSE(exists(root));
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(BackupFiles, AreThoseOfAFileList) {
    write_file("/opt/one", "1");
    write_file("/opt/two", "2");
    write_file("/var/lib/opkg/info/foo.list", "/opt\n/opt/one\n\n/opt/none\n/opt/two\n");
    cmpnt_control_info record;
    cmpnt_file_param param;
    set_file_param(&param, CMPNT_PARSE_BACKUP_FILES, 0, 0, 0);
    EXPECT_EQ(parse_pkg_info_from_file(&record, "/var/lib/opkg/info/foo.list", &param), -1);
    EXPECT_EQ(read_file(root + "/opt/one"), "1");
    EXPECT_FALSE(exists(root + "/opt/two"));
    EXPECT_TRUE(logged("CMPNT_ERROR", "parse_info_from_stream", "parse_line error\n"));
    EXPECT_TRUE(logged("CMPNT_ERROR", "parse_pkg_info_from_file",
                       "parse_info_from_stream fail, maybe not error.\n"));
}
