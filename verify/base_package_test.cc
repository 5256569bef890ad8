#include <errno.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "common/working_record.hh"
#include "tests/support/base_packages.hh"
#include "tests/support/device_test.hh"
#include "tests/support/verification.hh"

using Texts = std::vector<std::string>;

constexpr char package[] = "/opt/base.ipk";
constexpr char global_list[] = "/var/safe-verify/sm3/global-sm3.hash";
constexpr char white_list[] = "/var/safe-verify/sm3/global-white-sm3.hash";
constexpr char white_signature[] = "/var/safe-verify/signature/global-white-sm2.sign";
const std::string scratch_path = scratch;
const std::string signature_of_list =
    std::string(global_list) + " /var/safe-verify/signature/global-sm2.sign " + public_key;
const std::string signature_of_whitelist =
    std::string(white_list) + " " + white_signature + " " + public_key;

// Verification is switched on, and the package asked about through the exported function.
class BasePackage : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        platform.switch_result = 1;
        write_file(global_list, "d1  /usr/bin/x\nd2  /lib/y\nd3  /opt/z\n");
    }

    static int32_t verify(const std::string &path = package) {
        return cmpnt_safe_verify(path.c_str(), 0, 0, 0);
    }

    static std::string about(const std::string &installed, const std::string &digest) {
        return "|" + scratch_path + installed + "|" + digest + "|" + std::to_string(digest.size());
    }

    static testing::AssertionResult says(const std::string &message) {
        return logged("CMPNT_ERROR", "cmpnt_safe_verify", message);
    }

    // The file at this installed path has another digest than the listed one.
    static void spoil(const std::string &installed) {
        platform.digest_answer = [=](const DigestQuestion &question) {
            return question.file_name == scratch_path + installed ? 1 : 0;
        };
    }
};

TEST_F(BasePackage, PassesWithTheListedDigests) {
    ASSERT_TRUE(PackageTree()
                    .file("/usr/bin/x")
                    .file("/lib/y")
                    .file("/opt/z")
                    .outer_file("control.tar.gz", "control")
                    .pack(package));
    EXPECT_EQ(verify(), 0);
    EXPECT_EQ(signatures_asked(), Texts{signature_of_list});
    EXPECT_EQ(digests_asked(), (Texts{about("/lib/y", "d2"), about("/usr/bin/x", "d1")}));
    EXPECT_EQ(listed_hashes(), (Texts{"/usr/bin/x d1", "/lib/y d2", "/opt/z d3"}));
    EXPECT_EQ(g_variable.global_hashes_loaded, 1u);
    EXPECT_STREQ(g_variable.verified_patch_directory, "");
    EXPECT_FALSE(exists(scratch));
    EXPECT_TRUE(exists(package));
    EXPECT_EQ(trace_messages(),
              (Texts{"trace cmpnt_safe_verify: cmpnt_safe_verify path(/opt/base.ipk)\n",
                     "trace cmpnt_global_hash_file_verify: hash_check hash_name(/lib/y) "
                     "hash_value(d2)\n",
                     "trace cmpnt_global_hash_file_verify: hash_check hash_name(/usr/bin/x) "
                     "hash_value(d1)\n"}));
}

TEST_F(BasePackage, IsWalkedInTheOrderOfTheTrustedDirectories) {
    const Texts in_order = {"/sbin/f",          "/lib/f",           "/lib64/f",
                            "/bin/f",           "/usr/bin/f",       "/usr/lib/f",
                            "/usr/sbin/f",      "/usr/lib64/f",     "/usr/local/lib64/f",
                            "/usr/local/bin/f", "/usr/local/lib/f", "/usr/local/sbin/f",
                            "/etc/init.d/f",    "/etc/rc.d/f"};
    PackageTree tree;
    std::string list;
    Texts expected;
    for (const std::string &path : in_order) {
        tree.file(path);
        list += "d  " + path + "\n";
        expected.push_back(about(path, "d"));
    }
    write_file(global_list, list);
    ASSERT_TRUE(tree.pack(package));
    EXPECT_EQ(verify(), 0);
    EXPECT_EQ(digests_asked(), expected);
}

TEST_F(BasePackage, InstallsWhatItLikesElsewhere) {
    write_file(global_list, "d  /binx/f\nd  /library/f\nd  /opt/bin/f\nd  /etc/passwd\n");
    ASSERT_TRUE(PackageTree()
                    .file("/binx/f")
                    .file("/library/f")
                    .file("/opt/bin/f")
                    .file("/etc/passwd")
                    .pack(package));
    platform.digest_result = 1;
    EXPECT_EQ(verify(), 0);
    EXPECT_TRUE(digests_asked().empty());
    EXPECT_FALSE(exists(scratch));
}

TEST_F(BasePackage, MayInstallNothing) {
    ASSERT_TRUE(PackageTree().pack(package));
    EXPECT_EQ(verify(), 0);
    EXPECT_FALSE(exists(scratch));
}

TEST_F(BasePackage, NeedsTheSignatureOfTheGlobalList) {
    ASSERT_TRUE(PackageTree().pack(package));
    platform.signature_result = 0;
    EXPECT_EQ(verify(), -1);
    EXPECT_TRUE(says("safe_verify_file_signature(" + std::string(global_list) + ") fail\n"));
    EXPECT_EQ(g_variable.global_hashes_loaded, 0u);
    EXPECT_TRUE(listed_hashes().empty());
    EXPECT_FALSE(exists(scratch));
}

TEST_F(BasePackage, TakesEveryNonZeroAnswerForAGoodSignature) {
    ASSERT_TRUE(PackageTree().pack(package));
    write_file(white_list, "");
    write_file(white_signature, "");
    for (int32_t result : {1, 2, -1}) {
        cmpnt_sign_verify_init();
        platform.signature_result = result;
        EXPECT_EQ(verify(), 0) << result;
    }
}

TEST_F(BasePackage, NeedsTheSignatureOfTheWhitelistThatHasOne) {
    ASSERT_TRUE(PackageTree().pack(package));
    write_file(white_list, "e1  /usr/bin/w\n");
    write_file(white_signature, "");
    platform.signature_answer = [](const SignatureQuestion &question) {
        return question.data_file == white_list ? 0 : 1;
    };
    EXPECT_EQ(verify(), -1);
    EXPECT_TRUE(says("safe_verify_file_signature(" + std::string(white_list) + ") fail\n"));
    EXPECT_EQ(signatures_asked(), (Texts{signature_of_list, signature_of_whitelist}));
    EXPECT_EQ(g_variable.global_hashes_loaded, 0u);
    EXPECT_TRUE(listed_hashes().empty());
}

TEST_F(BasePackage, DoesNotTakeTheWhitelistForDigests) {
    ASSERT_TRUE(PackageTree().file("/usr/bin/w").pack(package));
    write_file(white_list, "e1  /usr/bin/w\n");
    write_file(white_signature, "");
    EXPECT_EQ(verify(), 0);
    EXPECT_EQ(signatures_asked().size(), 2u);
    EXPECT_EQ(listed_hashes().size(), 3u);
}

TEST_F(BasePackage, NeedsNoSignatureOfAWhitelistThatHasNone) {
    ASSERT_TRUE(PackageTree().pack(package));
    write_file(white_list, "e1  /usr/bin/w\n");
    EXPECT_EQ(verify(), 0);
    EXPECT_EQ(signatures_asked(), Texts{signature_of_list});
}

TEST_F(BasePackage, NeedsTheGlobalListAndStartsOverWithoutIt) {
    ASSERT_TRUE(PackageTree().pack(package));
    for (const char *text : {"d1 /usr/bin/x\n", "d1  /usr/bin/x\nd2\n"}) {
        forget_log();
        write_file(global_list, text);
        list_hash("earlier", "d0");
        EXPECT_EQ(verify(), -1);
        EXPECT_TRUE(says("cmpnt_get_hash_info fail\n"));
        EXPECT_EQ(g_variable.global_hashes_loaded, 0u);
        EXPECT_TRUE(listed_hashes().empty());
        EXPECT_FALSE(exists(scratch));
    }
    remove_tree(global_list);
    EXPECT_EQ(verify(), -1);
    EXPECT_TRUE(says("cmpnt_get_hash_info fail\n"));
    write_file(global_list, "d1  /usr/bin/x\n");
    EXPECT_EQ(verify(), 0);
    EXPECT_EQ(signatures_asked().size(), 4u);
}

TEST_F(BasePackage, IsVerifiedAgainstTheListLoadedBefore) {
    ASSERT_TRUE(PackageTree().file("/usr/bin/x").pack(package));
    EXPECT_EQ(verify(), 0);
    platform.signature_result = 0;
    write_file(global_list, "");
    EXPECT_EQ(verify(), 0);
    EXPECT_EQ(signatures_asked().size(), 1u);
    EXPECT_EQ(digests_asked().size(), 2u);
    cmpnt_sign_verify_init();
    EXPECT_EQ(verify(), -1);
}

// The flag survives the list: until the state is cleared there is nothing to hold files against.
TEST_F(BasePackage, PassesWithoutAListThatWasLost) {
    ASSERT_TRUE(PackageTree().file("/usr/bin/x").pack(package));
    spoil("/usr/bin/x");
    EXPECT_EQ(verify(), -1);
    remove_tree(scratch);
    cmpnt_free_sign_verify();
    EXPECT_EQ(verify(), 0);
    EXPECT_EQ(g_variable.global_hashes_loaded, 1u);
    cmpnt_sign_verify_init();
    EXPECT_EQ(verify(), -1);
}

TEST_F(BasePackage, IsVerifiedAgainstDigestsThatPatchesBroughtFirst) {
    list_hash("/usr/bin/x", "earlier");
    ASSERT_TRUE(PackageTree().file("/usr/bin/x").pack(package));
    EXPECT_EQ(verify(), 0);
    EXPECT_EQ(digests_asked(), Texts{about("/usr/bin/x", "earlier")});
}

TEST_F(BasePackage, WithAnotherDigestIsRefusedAndStaysToBeLookedInto) {
    ASSERT_TRUE(PackageTree().file("/usr/bin/x").file("/lib/y").pack(package));
    spoil("/usr/bin/x");
    EXPECT_EQ(verify(), -1);
    EXPECT_TRUE(says("cmpnt_hash_file_verify fail\n"));
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_global_hash_file_verify",
                       "file(/usr/bin/x) not in dynamic white list.\n"));
    EXPECT_TRUE(exists(scratch_path + "/usr/bin/x"));
    EXPECT_TRUE(exists(scratch_path + "/lib/y"));
    EXPECT_EQ(g_variable.global_hashes_loaded, 1u);
}

TEST_F(BasePackage, FailsForFilesThatABadOneBeforeItLeft) {
    ASSERT_TRUE(PackageTree().file("/usr/bin/x").pack("/opt/bad.ipk"));
    ASSERT_TRUE(PackageTree().file("/lib/y").pack(package));
    spoil("/usr/bin/x");
    EXPECT_EQ(verify("/opt/bad.ipk"), -1);
    EXPECT_EQ(verify(), -1);
    remove_tree(scratch);
    EXPECT_EQ(verify(), 0);
}

TEST_F(BasePackage, PassesOverFilesThatABadOneBeforeItLeftWhenTheyAreGoodNow) {
    ASSERT_TRUE(PackageTree().file("/usr/bin/x").pack(package));
    spoil("/usr/bin/x");
    EXPECT_EQ(verify(), -1);
    platform.digest_answer = nullptr;
    EXPECT_EQ(verify(), 0);
    EXPECT_FALSE(exists(scratch));
}

TEST_F(BasePackage, ThatCannotBeUnpackedIsRefused) {
    EXPECT_EQ(verify(), -1);
    EXPECT_TRUE(says("cmpnt_unzip_safe_verify_file fail\n"));
    EXPECT_EQ(g_variable.global_hashes_loaded, 1u);  // the list was good
    write_file(package, "no archive");
    EXPECT_EQ(verify(), -1);
    ASSERT_TRUE(PackageTree().pack_without_inner_archive(package));
    EXPECT_EQ(verify(), -1);
    EXPECT_TRUE(digests_asked().empty());
    EXPECT_EQ(traced("error", "cmpnt_safe_verify", "cmpnt_unzip_safe_verify_file fail\n"), 3);
}

TEST_F(BasePackage, WithAPathTooLongForTheCommandIsRefused) {
    const std::string path = "/opt" + std::string(1100, '/') + "base.ipk";
    ASSERT_TRUE(PackageTree().pack(package));
    EXPECT_EQ(verify(path), -1);
    EXPECT_TRUE(says("cmpnt_unzip_safe_verify_file fail\n"));
    EXPECT_EQ(fault::calls("popen"), 0);
}

TEST_F(BasePackage, WithAFileForATrustedDirectoryIsRefused) {
    ASSERT_TRUE(PackageTree().file("/lib64").pack(package));
    EXPECT_EQ(verify(), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_global_hash_file_verify",
                       "opendir path(" + scratch_path + "/lib64) fail.\n"));
    EXPECT_TRUE(says("cmpnt_hash_file_verify fail\n"));
}

// A merged /usr: the files are known under the link's name as well.
TEST_F(BasePackage, WithALinkForATrustedDirectoryIsWalkedThroughIt) {
    write_file(global_list, "d1  /bin/x\nd2  /usr/bin/x\n");
    ASSERT_TRUE(PackageTree().file("/usr/bin/x").link("/bin", "usr/bin").pack(package));
    EXPECT_EQ(verify(), 0);
    EXPECT_EQ(digests_asked(), (Texts{about("/bin/x", "d1"), about("/usr/bin/x", "d2")}));
}

TEST_F(BasePackage, WithALinkToNowhereForATrustedDirectoryIsRefused) {
    ASSERT_TRUE(PackageTree().link("/lib64", "nowhere").pack(package));
    EXPECT_EQ(verify(), -1);
}

TEST_F(BasePackage, IsCheckedForStartUpLinksOnlyAmongItsLinks) {
    write_file(global_list, "d1  /usr/bin/link\nd2  /etc/rc.d/rc3.d/S10x\n");
    ASSERT_TRUE(PackageTree()
                    .link("/usr/bin/link", "/etc/passwd")
                    .link("/etc/rc.d/rc3.d/S10x", "../../init.d/x")
                    .pack(package));
    EXPECT_EQ(verify(), 0);
    EXPECT_EQ(digests_asked(), Texts{about("/etc/rc.d/rc3.d/S10x", "d2")});
}

TEST_F(BasePackage, MayHoldPipes) {
    PackageTree tree;
    tree.directory("/lib");
    ASSERT_EQ(mkfifo("/opt/package/installed/lib/y", 0600), 0);
    ASSERT_TRUE(tree.pack(package));
    EXPECT_EQ(verify(), 0);
    EXPECT_TRUE(digests_asked().empty());
}

TEST_F(BasePackage, WithATreeTooDeepToWalkIsRefused) {
    std::string deep = "/usr/lib";
    for (int i = 0; i < 300; i++) {
        deep += "/d";
    }
    ASSERT_TRUE(PackageTree().directory(deep).pack(package));
    const int before = open_descriptors();
    EXPECT_EQ(verify(), -1);
    EXPECT_TRUE(says("cmpnt_hash_file_verify fail\n"));
    EXPECT_EQ(open_descriptors(), before);
}

TEST_F(BasePackage, MayHaveADeepTreeElsewhere) {
    std::string deep = "/opt";
    for (int i = 0; i < 300; i++) {
        deep += "/d";
    }
    ASSERT_TRUE(PackageTree().directory(deep).pack(package));
    EXPECT_EQ(verify(), 0);
}

TEST_F(BasePackage, DoesNotMindWhatStaysOfTheScratchDirectory) {
    ASSERT_TRUE(PackageTree().file("/usr/bin/x").pack(package));
    fault::fail("rmdir", 1, EBUSY, 100);
    EXPECT_EQ(verify(), 0);
    EXPECT_TRUE(exists(scratch));
}
