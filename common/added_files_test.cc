#include "common/added_files.hh"

#include <errno.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/device_test.hh"

namespace {

constexpr uint32_t to_nobody = 1;
constexpr uint32_t to_terminal = 2;
constexpr uint32_t to_syslog = 3;
constexpr char data_download[] = "/data/cmpnt/opkg/download";
constexpr char cache_download[] = "/var/cache/opkg/download";
constexpr char backup[] = "/var/cache/opkg/backup";

std::string path_in(const char *directory, const std::string &name) {
    return std::string(directory) + "/" + name;
}

}  // namespace

class AddedFiles : public DeviceTest {
protected:
    // One file in each directory, the second's in a bundle.
    void add_files() {
        write_file(path_in(data_download, "a.ipk"), "12345");
        write_file(path_in(cache_download, "smu1/b.ipk"), "");
        write_file(path_in(backup, "c.ipk"), "1");
    }

    std::vector<std::string> shown_in_syslog() {
        std::vector<std::string> texts;
        for (const SyslogCall &call : platform.syslog) {
            if (call.tag == "SHOW_ADD") {
                EXPECT_EQ(call.module, "INFO");
                EXPECT_EQ(call.priority, 6);
                texts.push_back(call.text);
            }
        }
        return texts;
    }
};

TEST_F(AddedFiles, AreShownToTheOperator) {
    add_files();
    cmpnt_show_all_add_file(to_terminal);
    EXPECT_EQ(platform.cli,
              "Show all add files:\n"
              "  Traverse path /data/cmpnt/opkg/download:\n"
              "          a.ipk:\n"
              "\n"
              "  Traverse path /var/cache/opkg/download:\n"
              "\n      smu name: smu1:\n"
              "          b.ipk:\n"
              "\n"
              "  Traverse path /var/cache/opkg/backup:\n"
              "          c.ipk:\n");
    EXPECT_TRUE(shown_in_syslog().empty());
}

TEST_F(AddedFiles, AreShownInTheSystemLogAtEveryLevelAndWithoutAPrefix) {
    add_files();
    g_cmpnt_dbg_level = 0;
    cmpnt_show_all_add_file(to_syslog);
    EXPECT_EQ(shown_in_syslog(), (std::vector<std::string>{
                                     "Show all add files:\n",
                                     "  Traverse path /data/cmpnt/opkg/download:\n",
                                     "          a.ipk:\n",
                                     "\n",
                                     "  Traverse path /var/cache/opkg/download:\n",
                                     "\n      smu name: smu1\n",
                                     "          b.ipk:\n",
                                     "\n",
                                     "  Traverse path /var/cache/opkg/backup:\n",
                                     "          c.ipk:\n",
                                 }));
    EXPECT_EQ(platform.cli, "");
    EXPECT_EQ(trace_lines().size(), 3u);
    for (const TraceLine &line : trace_lines()) {
        EXPECT_EQ(line.message.compare(0, 6, "file: "), 0) << "only files are traced";
    }
}

TEST_F(AddedFiles, AreShownByTheCardsPrinterOnACard) {
    g_dev_info.role = CMPNT_ROLE_CARD;
    cmpnt_show_all_add_file(to_syslog);
    ASSERT_FALSE(platform.syslog.empty());
    EXPECT_TRUE(platform.syslog[0].card);
}

TEST_F(AddedFiles, AreShownToNobodyInOtherModes) {
    add_files();
    for (uint32_t mode : {0u, to_nobody, 4u, 0xFFFFFFFFu}) {
        cmpnt_show_all_add_file(mode);
    }
    EXPECT_EQ(platform.cli, "");
    EXPECT_TRUE(shown_in_syslog().empty());
}

TEST_F(AddedFiles, AreTracedWithPathAndSize) {
    add_files();
    EXPECT_EQ(cmpnt_traverse_all_add_file(data_download, to_nobody), 0);
    EXPECT_TRUE(logged("CMPNT_TRACE", "cmpnt_traverse_all_add_file",
                       "file: /data/cmpnt/opkg/download/a.ipk, size: 5\n"));
}

TEST_F(AddedFiles, OfMissingDirectoriesDoNotStopTheListing) {
    write_file(path_in(backup, "c.ipk"), "");
    cmpnt_show_all_add_file(to_terminal);
    EXPECT_EQ(platform.cli,
              "Show all add files:\n"
              "  Traverse path /data/cmpnt/opkg/download:\n"
              "\n"
              "  Traverse path /var/cache/opkg/download:\n"
              "\n"
              "  Traverse path /var/cache/opkg/backup:\n"
              "          c.ipk:\n");
    for (const char *directory : {data_download, cache_download}) {
        EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_traverse_all_add_file",
                           std::string("opendir path(") + directory + ") fail.\n"));
    }
}

TEST_F(AddedFiles, AreWalkedThroughEveryDirectoryBelow) {
    write_file(path_in(backup, "one/two/three/deep.ipk"), "");
    write_file(path_in(backup, "one/.hidden"), "");
    cmpnt_traverse_all_add_file(backup, to_terminal);
    for (const char *text : {"smu name: one:\n", "smu name: two:\n", "smu name: three:\n",
                             "          deep.ipk:\n", "          .hidden:\n"}) {
        EXPECT_NE(platform.cli.find(text), std::string::npos) << text;
    }
}

TEST_F(AddedFiles, TakeALinkToADirectoryForAFile) {
    make_directories(backup);
    write_file("/tmp/folder/file", "");
    ASSERT_EQ(symlink("/tmp/folder", path_in(backup, "link").c_str()), 0);
    ASSERT_EQ(symlink("/tmp/nowhere", path_in(backup, "link2").c_str()), 0);
    EXPECT_EQ(cmpnt_traverse_all_add_file(backup, to_terminal), 0);
    EXPECT_NE(platform.cli.find("          link:\n"), std::string::npos);
    EXPECT_NE(platform.cli.find("          link2:\n"), std::string::npos);
    EXPECT_EQ(platform.cli.find("file"), std::string::npos);
}

TEST_F(AddedFiles, WithPercentSignsAreShownAsTheyAre) {
    write_file(path_in(backup, "%s%n.ipk"), "");
    cmpnt_traverse_all_add_file(backup, to_terminal);
    EXPECT_EQ(platform.cli, "          %s%n.ipk:\n");
}

TEST_F(AddedFiles, RefuseANullPath) {
    EXPECT_EQ(cmpnt_traverse_all_add_file(nullptr, to_terminal), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_traverse_all_add_file", "input param is error.\n"));
}

TEST_F(AddedFiles, EndTheWalkAtAnEntryThatCannotBeLookedAt) {
    add_files();
    const int before = open_descriptors();
    fault::fail("lstat64", 1, EIO);
    EXPECT_EQ(cmpnt_traverse_all_add_file(data_download, to_terminal), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_traverse_all_add_file",
                       "lstat error, errno(Input/output error)\n"));
    EXPECT_EQ(platform.cli, "");
    EXPECT_EQ(open_descriptors(), before);
}

TEST_F(AddedFiles, EndTheWalkAboveAFailedOne) {
    add_files();
    const int before = open_descriptors();
    fault::fail("opendir", 2, EMFILE);
    EXPECT_EQ(cmpnt_traverse_all_add_file(cache_download, to_terminal), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_traverse_all_add_file",
                       "opendir path(/var/cache/opkg/download/smu1) fail.\n"));
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_traverse_all_add_file",
                       "cmpnt_traverse_all_add_file fail, "
                       "path_name(/var/cache/opkg/download/smu1).\n"));
    EXPECT_EQ(open_descriptors(), before);
}

// Cut at the path's size, these would name their own directory again, without end.
TEST_F(AddedFiles, EndTheWalkWhereAPathDoesNotFit) {
    for (size_t length : {257u, 258u, 259u}) {
        remove_tree("/tmp/deep");
        forget_log();
        const std::string first = "/tmp/deep/" + std::string(120, 'd');
        const std::string path = first + "/" + std::string(length - first.size() - 1, 'e');
        ASSERT_EQ(path.size(), length);
        write_file(path + "/ff", "");
        EXPECT_EQ(cmpnt_traverse_all_add_file(path.c_str(), to_terminal), -1) << length;
        EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_traverse_all_add_file",
                           "lstat error, errno(File name too long)\n"));
    }
    EXPECT_EQ(platform.cli, "");
}

TEST_F(AddedFiles, WithTheLongestPathAreShown) {
    const std::string first = "/tmp/deep/" + std::string(120, 'd');
    const std::string path = first + "/" + std::string(257 - first.size() - 1, 'e');
    write_file(path + "/f", "");
    EXPECT_EQ(cmpnt_traverse_all_add_file(path.c_str(), to_terminal), 0);
    EXPECT_EQ(platform.cli, "          f:\n");
}
