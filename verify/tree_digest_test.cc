#include "verify/tree_digest.hh"

#include <errno.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/un.h>
#include <unistd.h>

#include "tests/support/device_test.hh"
#include "tests/support/verification.hh"

using Asked = std::vector<std::string>;
using Messages = std::vector<std::string>;

class TreeDigest : public DeviceTest {
protected:
    static std::string unpacked(const std::string &installed) { return scratch + installed; }

    static void unpack(const std::string &installed, const std::string &text = "x") {
        write_file(unpacked(installed), text);
    }

    static void unpack_link(const std::string &installed, const std::string &target) {
        const std::string path = unpacked(installed);
        make_directories(path.substr(0, path.rfind('/')));
        ASSERT_EQ(symlink(target.c_str(), path.c_str()), 0);
    }

    static int32_t verify(const std::string &installed) {
        return cmpnt_global_hash_file_verify(unpacked(installed).c_str());
    }

    // The question asked about an unpacked file.
    static std::string about(const std::string &installed, const std::string &digest) {
        return "|" + unpacked(installed) + "|" + digest + "|" + std::to_string(digest.size());
    }

    static void whitelist(const std::string &text) {
        write_file("/var/safe-verify/sm3/global-white-sm3.hash", text);
        write_file("/var/safe-verify/signature/global-white-sm2.sign", "");
    }

    static void whitelist_dynamically(const std::string &text) {
        write_file("/var/safe-verify/sm3/global-d-white-sm3.hash", text);
    }

    static testing::AssertionResult says(const std::string &message) {
        return logged("CMPNT_ERROR", "cmpnt_global_hash_file_verify", message);
    }

    static int said(const std::string &message) {
        return traced("error", "cmpnt_global_hash_file_verify", message);
    }

    // A directory below /opt whose path has this many bytes.
    static std::string directory_of_length(size_t length) {
        std::string path = "/opt";
        while (length - path.size() > 201) {
            path += "/" + std::string(100, 'd');
        }
        path += "/" + std::string(length - path.size() - 1, 'e');
        make_directories(path);
        return path;
    }
};

TEST_F(TreeDigest, IsAskedForTheUnpackedFileOfAListedPath) {
    list_hash("/usr/bin/y", "other");
    list_hash("/usr/bin/x", "digest");
    unpack("/usr/bin/x");
    EXPECT_EQ(verify("/usr/bin"), 0);
    EXPECT_EQ(digests_asked(), Asked{about("/usr/bin/x", "digest")});
    EXPECT_TRUE(logged("CMPNT_TRACE", "cmpnt_global_hash_file_verify",
                       "hash_check hash_name(/usr/bin/x) hash_value(digest)\n"));
    EXPECT_EQ(trace_lines().size(), 1u);
}

TEST_F(TreeDigest, IsNotAskedForAFileThatIsNotListed) {
    list_hash("/usr/bin/x", "d1");
    list_hash("x", "d2");
    list_hash(unpacked("/usr/bin/xy"), "d3");
    unpack("/usr/bin/xy");
    unpack("/usr/bin/X");
    platform.digest_result = -1;
    EXPECT_EQ(verify("/usr/bin"), 0);
    EXPECT_TRUE(digests_asked().empty());
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(TreeDigest, ThatDiffersIsRefused) {
    list_hash("/usr/bin/x", "d1");
    unpack("/usr/bin/x");
    for (int32_t result : {1, -1, INT32_MIN}) {
        forget_log();
        platform.digest_result = result;
        EXPECT_EQ(verify("/usr/bin"), -1);
        EXPECT_TRUE(
            says("(/usr/bin/x) do_verify_signature fail ret(" + std::to_string(result) + ").\n"));
        EXPECT_TRUE(says("file(/usr/bin/x) not in dynamic white list.\n"));
        EXPECT_EQ(trace_lines().size(), 3u);
    }
    EXPECT_EQ(listed_hashes(), Asked{"/usr/bin/x d1"});
}

TEST_F(TreeDigest, ThatDiffersIsEnoughToStop) {
    for (const char *path : {"/bin/a", "/bin/b", "/bin/c"}) {
        list_hash(path, "d");
        unpack(path);
    }
    platform.digest_result = 1;
    EXPECT_EQ(verify("/bin"), -1);
    EXPECT_EQ(digests_asked().size(), 1u);
}

TEST_F(TreeDigest, MayDifferOnTheDynamicWhitelistOfAnyClient) {
    list_hash("/usr/bin/x", "d1");
    unpack("/usr/bin/x");
    platform.digest_result = 1;
    for (const char *client : {"cmpnt_upgrade_c", "another"}) {
        forget_log();
        whitelist_dynamically("/usr/bin/a,b\n/usr/bin/x," + std::string(client) + "\n");
        EXPECT_EQ(verify("/usr/bin"), 0) << client;
        EXPECT_TRUE(says("(/usr/bin/x) do_verify_signature fail ret(1).\n"));
        EXPECT_EQ(trace_lines().size(), 2u);
    }
    whitelist_dynamically("/usr/bin/xy,another\n/usr/bin/,another\n");
    EXPECT_EQ(verify("/usr/bin"), -1);
    EXPECT_TRUE(says("file(/usr/bin/x) not in dynamic white list.\n"));
}

TEST_F(TreeDigest, IsNotAskedForOnTheGlobalWhitelist) {
    list_hash("/usr/bin/x", "d1");
    list_hash("/usr/bin/y", "d2");
    unpack("/usr/bin/x");
    unpack("/usr/bin/y");
    platform.digest_answer = [](const DigestQuestion &question) {
        return question.digest == "d1" ? 1 : 0;
    };
    whitelist("/usr/bin/xz\n");  // the line begins with the path
    EXPECT_EQ(verify("/usr/bin"), 0);
    EXPECT_EQ(digests_asked(), Asked{about("/usr/bin/y", "d2")});
    EXPECT_EQ(trace_lines().size(), 1u);
    whitelist("/usr/bin\n");
    EXPECT_EQ(verify("/usr/bin"), -1);
}

TEST_F(TreeDigest, IsAskedForWhenTheGlobalWhitelistHasNoSignatureFile) {
    list_hash("/usr/bin/x", "d1");
    unpack("/usr/bin/x");
    write_file("/var/safe-verify/sm3/global-white-sm3.hash", "/usr/bin/x\n");
    EXPECT_EQ(verify("/usr/bin"), 0);
    EXPECT_EQ(digests_asked().size(), 1u);
}

// A whitelist that cannot be read complains to whoever asks.
TEST_F(TreeDigest, IsAskedForAfterTheGlobalWhitelistWhichIsNotAskedAboutSkippedLinks) {
    write_file("/var/safe-verify/signature/global-white-sm2.sign", "");
    const std::string complaint =
        "open(/var/safe-verify/sm3/global-white-sm3.hash) failed, reason: " +
        std::string(strerror(ENOENT)) + "\n";
    unpack_link("/bin/link", "nowhere");
    EXPECT_EQ(verify("/bin"), 0);
    EXPECT_FALSE(exists(trace_path()));
    unpack("/bin/not_listed");
    EXPECT_EQ(verify("/bin"), 0);
    EXPECT_EQ(traced("error", "file_exist_in_global_whitelist", complaint), 1);
    EXPECT_TRUE(digests_asked().empty());
}

TEST_F(TreeDigest, OfLinksIsAskedForUnderStartUpLinksOnly) {
    for (const char *path :
         {"/usr/bin/link", "/etc/rc.d/S10a", "/etc/rc.d/rc3.d/S10b", "/etc/init.d/link"}) {
        list_hash(path, "d");
        unpack_link(path, "nowhere");
    }
    EXPECT_EQ(verify("/usr/bin"), 0);
    EXPECT_EQ(verify("/etc/init.d"), 0);
    EXPECT_TRUE(digests_asked().empty());
    EXPECT_EQ(verify("/etc/rc.d/rc3.d"), 0);
    EXPECT_EQ(digests_asked(), Asked{about("/etc/rc.d/rc3.d/S10b", "d")});
    platform.digest_result = 1;
    EXPECT_EQ(verify("/etc/rc.d"), -1);
}

TEST_F(TreeDigest, OfLinksIsAskedForUnderWhatBeginsLikeStartUpLinks) {
    list_hash("/etc/rc.dx/link", "d");
    unpack_link("/etc/rc.dx/link", "nowhere");
    list_hash("/etc/rc.", "d");
    unpack_link("/etc/rc.", "nowhere");
    EXPECT_EQ(verify("/etc"), 0);
    EXPECT_EQ(digests_asked(), Asked{about("/etc/rc.dx/link", "d")});
}

TEST_F(TreeDigest, IsNotSoughtBehindLinksToDirectories) {
    list_hash("/usr/lib/dir/x", "d");
    list_hash("/usr/lib/real/x", "d");
    list_hash("/etc/rc.d/rc/x", "d");
    unpack("/usr/lib/real/x");
    unpack_link("/usr/lib/dir", "real");
    unpack_link("/usr/lib/self", ".");
    unpack_link("/etc/rc.d/rc", "../../usr/lib/real");
    EXPECT_EQ(verify("/usr/lib"), 0);
    EXPECT_EQ(verify("/etc/rc.d"), 0);
    EXPECT_EQ(digests_asked(), Asked{about("/usr/lib/real/x", "d")});
}

TEST_F(TreeDigest, IsNotAskedForWhatIsNeitherFileNorLink) {
    make_directories(unpacked("/bin"));
    ASSERT_EQ(mkfifo(unpacked("/bin/pipe").c_str(), 0600), 0);
    list_hash("/bin/pipe", "d");
    list_hash("/bin/socket", "d");
    list_hash("/bin/null", "d");
    ASSERT_EQ(chdir(unpacked("/bin").c_str()), 0);
    const int fd = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address = {AF_UNIX, "socket"};
    const void *bytes = &address;
    ASSERT_EQ(bind(fd, static_cast<const sockaddr *>(bytes), sizeof(address)), 0);
    close(fd);
    ASSERT_EQ(chdir("/"), 0);
    // Not every sandbox lets devices be made.
    (void)!mknod(unpacked("/bin/null").c_str(), S_IFCHR | 0600, makedev(1, 3));
    platform.digest_result = 1;
    EXPECT_EQ(verify("/bin"), 0);
    EXPECT_TRUE(digests_asked().empty());
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(TreeDigest, IsAskedForNowhereWhenTheFileSystemTellsNoTypes) {
    for (const char *path : {"/bin/x", "/bin/below/y"}) {
        list_hash(path, "d");
        unpack(path);
    }
    fault::hide_entry_types();
    platform.digest_result = 1;
    EXPECT_EQ(verify("/bin"), 0);
    EXPECT_TRUE(digests_asked().empty());
}

TEST_F(TreeDigest, IsAskedForInEveryDirectoryBelow) {
    for (const char *path : {"/lib/a/b/c/x", "/lib/.hidden/y", "/lib/..odd/z", "/lib/with blank"}) {
        list_hash(path, "d");
        unpack(path);
    }
    make_directories(unpacked("/lib/empty"));
    EXPECT_EQ(verify("/lib"), 0);
    EXPECT_EQ(digests_asked().size(), 4u);
}

TEST_F(TreeDigest, ThatDiffersIsReportedByEachDirectoryAbove) {
    list_hash("/lib/a/b/x", "d1");
    unpack("/lib/a/b/x");
    platform.digest_result = 3;
    EXPECT_EQ(verify("/lib"), -1);
    const std::string start = "error cmpnt_global_hash_file_verify: ";
    EXPECT_EQ(trace_messages(),
              (Messages{"trace cmpnt_global_hash_file_verify: hash_check hash_name(/lib/a/b/x) "
                        "hash_value(d1)\n",
                        start + "(/lib/a/b/x) do_verify_signature fail ret(3).\n",
                        start + "file(/lib/a/b/x) not in dynamic white list.\n",
                        start + "cmpnt_global_hash_file_verify fail\n",
                        start + "cmpnt_global_hash_file_verify fail\n"}));
    EXPECT_TRUE(says("cmpnt_global_hash_file_verify fail\n"));
}

TEST_F(TreeDigest, NeedsADirectoryThatOpens) {
    EXPECT_EQ(cmpnt_global_hash_file_verify("/opt/missing"), -1);
    EXPECT_TRUE(says("opendir path(/opt/missing) fail.\n"));
    write_file("/opt/file", "");
    EXPECT_EQ(cmpnt_global_hash_file_verify("/opt/file"), -1);
    EXPECT_TRUE(says("opendir path(/opt/file) fail.\n"));
    EXPECT_EQ(cmpnt_global_hash_file_verify(""), -1);
    EXPECT_TRUE(says("opendir path() fail.\n"));
}

TEST_F(TreeDigest, NeedsEveryDirectoryBelowToOpen) {
    make_directories(unpacked("/lib/a"));
    fault::fail("opendir", 2, EMFILE);
    EXPECT_EQ(verify("/lib"), -1);
    EXPECT_TRUE(says("opendir path(" + unpacked("/lib/a") + ") fail.\n"));
    EXPECT_TRUE(says("cmpnt_global_hash_file_verify fail\n"));
}

TEST_F(TreeDigest, NeedsEveryEntryToBeRead) {
    unpack("/lib/a");
    fault::fail("readdir64", 3, EIO);
    EXPECT_EQ(verify("/lib"), -1);
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(TreeDigest, RefusesNull) {
    EXPECT_EQ(cmpnt_global_hash_file_verify(nullptr), -1);
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(TreeDigest, OfAShortPathIsThatOfNoInstalledFile) {
    write_file("/opt/x", "x");
    for (const char *name : {"/opt/x", "x", "/x"}) {
        list_hash(name, "d");
    }
    platform.digest_result = 1;
    EXPECT_EQ(cmpnt_global_hash_file_verify("/opt"), 0);
    EXPECT_TRUE(digests_asked().empty());
}

// The installed path is cut by count: any directory whose path has the length will do.
TEST_F(TreeDigest, CutsTheLengthOfTheScratchDirectoryOffAnyPath) {
    const std::string directory = directory_of_length(strlen(scratch));
    write_file(directory + "/bin/x", "x");
    list_hash("/bin/x", "d");
    EXPECT_EQ(cmpnt_global_hash_file_verify(directory.c_str()), 0);
    EXPECT_EQ(digests_asked(), Asked{"|" + directory + "/bin/x|d|1"});
}

TEST_F(TreeDigest, IsAskedForAsLongAsThePathFits) {
    const std::string directory = directory_of_length(257);
    write_file(directory + "/x", "x");
    list_hash((directory + "/x").substr(strlen(scratch)), "d");
    EXPECT_EQ(cmpnt_global_hash_file_verify(directory.c_str()), 0);
    EXPECT_EQ(digests_asked().size(), 1u);
}

TEST_F(TreeDigest, RefusesAPathThatIsOneByteTooLong) {
    const std::string directory = directory_of_length(258);
    write_file(directory + "/x", "x");
    EXPECT_EQ(cmpnt_global_hash_file_verify(directory.c_str()), -1);
    EXPECT_TRUE(says("opendir path(" + directory + "/) fail.\n"));
}

// Cut, these paths would be the directory with a slash, and the directory itself, for ever.
TEST_F(TreeDigest, RefusesAPathThatDoesNotFit) {
    for (size_t length : {258, 259, 300}) {
        const std::string directory = directory_of_length(length);
        const std::string cut = (directory + "/child").substr(0, CMPNT_PATH_SIZE - 1);
        write_file(directory + "/child", "x");
        forget_log();
        EXPECT_EQ(cmpnt_global_hash_file_verify(directory.c_str()), -1) << length;
        EXPECT_TRUE(says("opendir path(" + cut + ") fail.\n"));
        remove_tree(directory + "/child");
        EXPECT_EQ(cmpnt_global_hash_file_verify(directory.c_str()), 0) << length;
        make_directories(directory + "/child");
        EXPECT_EQ(cmpnt_global_hash_file_verify(directory.c_str()), -1) << length;
        remove_tree(directory + "/child");
        ASSERT_EQ(symlink("x", (directory + "/child").c_str()), 0);
        EXPECT_EQ(cmpnt_global_hash_file_verify(directory.c_str()), -1) << length;
        remove_tree(directory + "/child");
        ASSERT_EQ(mkfifo((directory + "/child").c_str(), 0600), 0);
        EXPECT_EQ(cmpnt_global_hash_file_verify(directory.c_str()), 0) << length;
    }
}

TEST_F(TreeDigest, EndsInATreeOfAnyDepth) {
    std::string deep = "/lib";
    for (int i = 0; i < 300; i++) {
        deep += "/d";
    }
    make_directories(unpacked(deep));
    const int before = open_descriptors();
    EXPECT_EQ(verify("/lib"), -1);
    EXPECT_EQ(open_descriptors(), before);
    const size_t levels = (CMPNT_PATH_SIZE - 1 - strlen(scratch) - strlen("/lib")) / 2;
    EXPECT_EQ(said("cmpnt_global_hash_file_verify fail\n"), static_cast<int>(levels));
    EXPECT_EQ(trace_lines().size(), levels + 1);
}

TEST_F(TreeDigest, OfFilesWithTheLongestNamesIsRefusedAsTheirPathsDoNotFit) {
    unpack("/bin/" + std::string(255, 'n'));
    EXPECT_EQ(verify("/bin"), -1);
}

TEST_F(TreeDigest, IsFoundInALongListWithAndWithoutMemoryForAnIndex) {
    for (int i = 0; i < 100; i++) {
        list_hash("/bin/file" + std::to_string(i), "d" + std::to_string(i));
    }
    unpack("/bin/file7");
    unpack("/bin/file99");
    unpack("/bin/file100");
    for (int call = 0; call < 4; call++) {
        platform.digest_questions.clear();
        if (call > 0) {
            fault::fail("calloc", call, ENOMEM, 100);
        }
        EXPECT_EQ(verify("/bin"), 0);
        EXPECT_THAT(digests_asked(), testing::UnorderedElementsAre(about("/bin/file7", "d7"),
                                                                   about("/bin/file99", "d99")));
    }
}
