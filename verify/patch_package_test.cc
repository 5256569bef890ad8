#include <errno.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <set>

#include "common/working_record.hh"
#include "tests/support/device_test.hh"
#include "tests/support/verification.hh"

using Texts = std::vector<std::string>;

constexpr char directory_verifier[] = "cmpnt_patch_sm2_verify_and_get_sm3";

// Verification is switched on, and the package asked about through the exported function.
class PatchPackage : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        platform.switch_result = 1;
    }

    // A directory with this list and these files.
    static void make_patch(const std::string &directory, const std::string &list,
                           const Texts &files = {}) {
        write_file(directory + "/patch-sm3.hash", list);
        for (const std::string &name : files) {
            write_file(directory + "/" + name, "x");
        }
    }

    static int32_t verify(const std::string &path) {
        return cmpnt_safe_verify(path.c_str(), 0, 0, 0);
    }

    static std::string signature_of(const std::string &directory) {
        return directory + "/patch-sm3.hash " + directory + "/patch-sm2.sign " + public_key;
    }

    static testing::AssertionResult says(const std::string &message) {
        return logged("CMPNT_ERROR", "cmpnt_safe_verify", message);
    }

    static testing::AssertionResult directory_says(const std::string &message) {
        return logged("CMPNT_ERROR", directory_verifier, message);
    }

    static testing::AssertionResult is_refused_directory(const std::string &path) {
        if (verify(path) != -1) {
            return testing::AssertionFailure() << path << " passes";
        }
        return says("cmpnt_patch_sm2_verify_and_get_sm3 fail\n");
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

TEST_F(PatchPackage, PassesWithTheListedDigest) {
    make_patch("/opt/p", "d1  a.deb\nd2  smu-a\n", {"smu-a", "a.deb"});
    EXPECT_EQ(verify("/opt/p/a.deb"), 0);
    EXPECT_EQ(signatures_asked(), Texts{signature_of("/opt/p")});
    EXPECT_EQ(digests_asked(), (Texts{"/opt/p|smu-a|d2|2", "/opt/p|a.deb|d1|2"}));
    EXPECT_STREQ(g_variable.verified_patch_directory, "/opt/p");
    EXPECT_EQ(g_variable.global_hashes_loaded, 0u);
    EXPECT_EQ(trace_messages(),
              (Texts{"trace cmpnt_safe_verify: cmpnt_safe_verify path(/opt/p/a.deb)\n",
                     "trace cmpnt_patch_sm2_verify_and_get_sm3: path(/opt/p) sign verify\n",
                     "trace cmpnt_patch_sm2_verify_and_get_sm3: safe verify smu_file(smu-a)\n",
                     "trace cmpnt_check_patch_hash_value: hash_check hash_name(smu-a) "
                     "hash_value(d2)\n",
                     "trace cmpnt_check_patch_hash_value: hash_check hash_name(a.deb) "
                     "hash_value(d1)\n"}));
    EXPECT_TRUE(logged("CMPNT_TRACE", directory_verifier, "path(/opt/p) sign verify\n"));
    EXPECT_TRUE(logged("CMPNT_TRACE", directory_verifier, "safe verify smu_file(smu-a)\n"));
}

TEST_F(PatchPackage, TakesEveryNonZeroAnswerForAGoodSignature) {
    make_patch("/opt/p", "d1  a.deb\n");
    for (int32_t result : {1, 2, -1}) {
        cmpnt_sign_verify_init();
        platform.signature_result = result;
        EXPECT_EQ(verify("/opt/p/a.deb"), 0) << result;
    }
}

TEST_F(PatchPackage, NeedsTheSignatureOfItsList) {
    make_patch("/opt/p", "d1  a.deb\n");
    platform.signature_result = 0;
    EXPECT_TRUE(is_refused_directory("/opt/p/a.deb"));
    EXPECT_TRUE(directory_says("safe_verify_file_signature_with_id(/opt/p/patch-sm3.hash) fail\n"));
    EXPECT_TRUE(listed_hashes().empty());
    EXPECT_STREQ(g_variable.verified_patch_directory, "");
    EXPECT_TRUE(digests_asked().empty());
}

TEST_F(PatchPackage, NeedsTheList) {
    make_directories("/opt/p");
    EXPECT_TRUE(is_refused_directory("/opt/p/a.deb"));
    EXPECT_TRUE(directory_says("cmpnt_get_hash_info fail\n"));
    EXPECT_STREQ(g_variable.verified_patch_directory, "");
}

TEST_F(PatchPackage, NeedsAListOfEntries) {
    make_patch("/opt/p", "d1  a.deb\nd2 smu\n");
    EXPECT_TRUE(is_refused_directory("/opt/p/a.deb"));
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_get_hash_info", "hash file format err.\n"));
    EXPECT_TRUE(directory_says("cmpnt_get_hash_info fail\n"));
    EXPECT_STREQ(g_variable.verified_patch_directory, "");
}

TEST_F(PatchPackage, NeedsItsDirectory) {
    make_patch("/opt/p", "d1  a.deb\n");
    EXPECT_EQ(verify("/opt/x.bin"), 0);  // makes the trace's directory
    fault::fail("opendir", 1, EMFILE);
    EXPECT_TRUE(is_refused_directory("/opt/p/a.deb"));
    EXPECT_TRUE(directory_says("opendir path(/opt/p) fail.\n"));
    EXPECT_STREQ(g_variable.verified_patch_directory, "");
}

TEST_F(PatchPackage, NeedsEveryEntryOfItsDirectory) {
    make_patch("/opt/p", "d1  a.deb\n");
    fault::fail("readdir64", 2, EIO);
    EXPECT_TRUE(is_refused_directory("/opt/p/a.deb"));
    EXPECT_STREQ(g_variable.verified_patch_directory, "");
}

TEST_F(PatchPackage, NeedsEverySmuFileToBeListed) {
    make_patch("/opt/p", "d1  a.deb\nd2  smu-a\n", {"smu-a", "smu-b", "a.deb"});
    EXPECT_TRUE(is_refused_directory("/opt/p/a.deb"));
    EXPECT_TRUE(directory_says("cmpnt_check_patch_hash_value(smu-b) fail.\n"));
    EXPECT_STREQ(g_variable.verified_patch_directory, "");
}

TEST_F(PatchPackage, NeedsTheDigestOfEverySmuFile) {
    make_patch("/opt/p", "d1  a.deb\nd2  smu-a\nd3  smu\n", {"smu-a", "smu"});
    platform.digest_answer = [](const DigestQuestion &question) {
        return question.file_name == "smu" ? 5 : 0;
    };
    EXPECT_TRUE(is_refused_directory("/opt/p/a.deb"));
    EXPECT_TRUE(directory_says("cmpnt_check_patch_hash_value(smu) fail.\n"));
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_check_patch_hash_value",
                       "do_verify_signature fail ret(5).\n"));
    EXPECT_STREQ(g_variable.verified_patch_directory, "");
}

TEST_F(PatchPackage, NeedsNothingOfOtherFilesAndOfWhatIsNoFile) {
    make_patch("/opt/p", "d1  a.deb\n", {"xsmu", "SMU-a", "sm", "b.deb", ".smu"});
    make_directories("/opt/p/smu-directory");
    ASSERT_EQ(symlink("a.deb", "/opt/p/smu-link"), 0);
    ASSERT_EQ(mkfifo("/opt/p/smu-pipe", 0600), 0);
    EXPECT_EQ(verify("/opt/p/a.deb"), 0);
    EXPECT_EQ(digests_asked(), Texts{"/opt/p|a.deb|d1|2"});
}

TEST_F(PatchPackage, NeedsNothingOfSmuFilesWhenTheFileSystemTellsNoTypes) {
    make_patch("/opt/p", "d1  a.deb\n", {"smu-a"});
    fault::hide_entry_types();
    EXPECT_EQ(verify("/opt/p/a.deb"), 0);
    EXPECT_EQ(digests_asked(), Texts{"/opt/p|a.deb|d1|2"});
}

TEST_F(PatchPackage, ThatIsNotListedIsRefused) {
    make_patch("/opt/p", "d1  a.deb\n", {"b.deb"});
    EXPECT_EQ(verify("/opt/p/b.deb"), -1);
    EXPECT_TRUE(says("cmpnt_check_patch_hash_value(b.deb) fail.\n"));
    EXPECT_STREQ(g_variable.verified_patch_directory, "/opt/p");  // before its own digest
    EXPECT_TRUE(digests_asked().empty());
    EXPECT_EQ(verify("/opt/p/a.deb"), 0);
    EXPECT_EQ(signatures_asked().size(), 1u);
}

TEST_F(PatchPackage, WithAnotherDigestIsRefused) {
    make_patch("/opt/p", "d1  a.deb\n");
    platform.digest_result = 1;
    EXPECT_EQ(verify("/opt/p/a.deb"), -1);
    EXPECT_TRUE(says("cmpnt_check_patch_hash_value(a.deb) fail.\n"));
}

TEST_F(PatchPackage, OfTheSameDirectoryIsOnlyComparedWithItsDigest) {
    make_patch("/opt/p", "d1  a.deb\nd2  b.deb\nd3  smu\n", {"smu"});
    EXPECT_EQ(verify("/opt/p/a.deb"), 0);
    platform.digest_questions.clear();
    platform.signature_result = 0;
    write_file("/opt/p/patch-sm3.hash", "");
    write_file("/opt/p/smu-new", "not listed");
    EXPECT_EQ(verify("/opt/p/b.deb"), 0);
    EXPECT_EQ(digests_asked(), Texts{"/opt/p|b.deb|d2|2"});
    EXPECT_EQ(signatures_asked().size(), 1u);
}

TEST_F(PatchPackage, OfADirectoryOtherwiseWrittenIsVerifiedAnew) {
    make_patch("/opt/p", "d1  a.deb\n");
    EXPECT_EQ(verify("/opt/p/a.deb"), 0);
    EXPECT_EQ(verify("/opt//p/a.deb"), 0);
    EXPECT_EQ(verify("/opt/p//a.deb"), 0);
    EXPECT_EQ(signatures_asked(),
              (Texts{signature_of("/opt/p"), signature_of("/opt//p"), signature_of("/opt/p/")}));
    EXPECT_EQ(digests_asked().back(), "/opt/p/|a.deb|d1|2");
}

// The names are bare: what the first directory says of one holds for all until the digests are freed.
TEST_F(PatchPackage, OfASecondDirectoryIsHeldAgainstTheFirstOnesDigestsOfItsNames) {
    make_patch("/opt/p", "d1  a.deb\nd2  smu-a\n", {"smu-a"});
    make_patch("/opt/q", "e1  b.deb\ne2  smu-a\n", {"smu-a"});
    platform.digest_answer = [](const DigestQuestion &question) {
        return question.directory == "/opt/q" && question.digest[0] == 'd' ? 1 : 0;
    };
    EXPECT_EQ(verify("/opt/p/a.deb"), 0);
    EXPECT_TRUE(is_refused_directory("/opt/q/b.deb"));
    EXPECT_TRUE(directory_says("cmpnt_check_patch_hash_value(smu-a) fail.\n"));
    EXPECT_EQ(digests_asked().back(), "/opt/q|smu-a|d2|2");
    EXPECT_STREQ(g_variable.verified_patch_directory, "/opt/p");
    cmpnt_sign_verify_init();
    EXPECT_TRUE(is_refused_directory("/opt/q/b.deb"));
    cmpnt_free_sign_verify();
    EXPECT_EQ(verify("/opt/q/b.deb"), 0);
}

TEST_F(PatchPackage, FindsNoDigestAfterTheListWasLostUntilTheStateIsCleared) {
    make_patch("/opt/p", "d1  a.deb\n");
    make_patch("/opt/q", "bad line\n");
    EXPECT_EQ(verify("/opt/p/a.deb"), 0);
    EXPECT_TRUE(is_refused_directory("/opt/q/b.deb"));
    EXPECT_TRUE(listed_hashes().empty());
    EXPECT_STREQ(g_variable.verified_patch_directory, "/opt/p");
    EXPECT_EQ(verify("/opt/p/a.deb"), -1);
    EXPECT_TRUE(says("cmpnt_check_patch_hash_value(a.deb) fail.\n"));
    cmpnt_sign_verify_init();
    EXPECT_EQ(verify("/opt/p/a.deb"), 0);
}

TEST_F(PatchPackage, IsVerifiedAnewAfterAFailure) {
    make_patch("/opt/p", "d1  a.deb\nd2  smu\n", {"smu"});
    platform.digest_result = 1;
    EXPECT_TRUE(is_refused_directory("/opt/p/a.deb"));
    platform.digest_result = 0;
    EXPECT_EQ(verify("/opt/p/a.deb"), 0);
    EXPECT_EQ(signatures_asked().size(), 2u);
}

// The directory is the empty text, as that of no verified one: there is no list to check.
TEST_F(PatchPackage, InTheRootDirectoryIsRefusedAsNotListed) {
    EXPECT_EQ(verify("/p.deb"), -1);
    EXPECT_TRUE(says("cmpnt_check_patch_hash_value(p.deb) fail.\n"));
    EXPECT_TRUE(signatures_asked().empty());
    list_hash("p.deb", "d");
    EXPECT_EQ(verify("/p.deb"), 0);
    EXPECT_EQ(digests_asked(), Texts{"|p.deb|d|1"});
    make_patch("/opt/q", "d1  a.deb\n");
    EXPECT_EQ(verify("/opt/q/a.deb"), 0);
    EXPECT_TRUE(is_refused_directory("/p.deb"));
    EXPECT_EQ(signatures_asked().back(), signature_of(""));
}

TEST_F(PatchPackage, WithoutADirectoryIsTakenForOne) {
    ASSERT_EQ(chdir("/opt"), 0);
    make_patch("/opt/p.deb", "d1  p.deb\n");
    EXPECT_EQ(verify("p.deb"), 0);
    EXPECT_EQ(signatures_asked(), Texts{signature_of("p.deb")});
    EXPECT_EQ(digests_asked(), Texts{"p.deb|p.deb|d1|2"});
    ASSERT_EQ(chdir("/"), 0);
    EXPECT_STREQ(g_variable.verified_patch_directory, "p.deb");
}

TEST_F(PatchPackage, FindsItsListInALongDirectory) {
    for (size_t length : {244, 245, 258}) {
        const std::string directory = directory_of_length(length);
        make_patch(directory, "d1  a.deb\nd2  smu\n", {"smu"});
        EXPECT_EQ(verify(directory + "/a.deb"), 0) << length;
        EXPECT_EQ(signatures_asked().back(), signature_of(directory));
        EXPECT_EQ(g_variable.verified_patch_directory, directory);
    }
}

TEST_F(PatchPackage, MayHaveALongName) {
    const std::string directory = directory_of_length(200);
    const std::string name = std::string(200, 'n') + ".deb";
    make_patch(directory, "d1  " + name + "\n");
    EXPECT_EQ(verify(directory + "/" + name), 0);
    EXPECT_EQ(digests_asked(), Texts{directory + "|" + name + "|d1|2"});
}

// Cut, the directory would be the one above, where a file of the same name may well be good.
TEST_F(PatchPackage, InADirectoryThatIsTooLongIsRefused) {
    const std::string above = directory_of_length(150);
    make_patch(above, "d1  a.deb\n", {"a.deb"});
    for (size_t length : {259, 260, 300}) {
        const std::string directory = above + "/" + std::string(length - above.size() - 1, 'e');
        EXPECT_EQ(verify(directory + "/a.deb"), -1) << length;
    }
    EXPECT_EQ(verify(std::string(260, 'n') + ".deb"), -1);
    EXPECT_TRUE(signatures_asked().empty());
    EXPECT_TRUE(digests_asked().empty());
    EXPECT_EQ(traced("error", "cmpnt_safe_verify", "cmpnt_check_patch_hash_value(a.deb) fail.\n"),
              0);
}

TEST_F(PatchPackage, IsVerifiedAmongManySmuFiles) {
    std::string list = "d  a.deb\n";
    Texts names;
    for (int i = 0; i < 40; i++) {
        names.push_back("smu" + std::to_string(i));
        list += "d" + std::to_string(i) + "  smu" + std::to_string(i) + "\n";
    }
    make_patch("/opt/p", list, names);
    EXPECT_EQ(verify("/opt/p/a.deb"), 0);
    const Texts asked = digests_asked();
    EXPECT_EQ(std::set<std::string>(asked.begin(), asked.end()).size(), 41u);
    for (int i = 0; i < 40; i++) {
        const std::string number = std::to_string(i);
        EXPECT_EQ(std::count(asked.begin(), asked.end(),
                             "/opt/p|smu" + number + "|d" + number + "|" +
                                 std::to_string(number.size() + 1)),
                  1);
    }
}

TEST_F(PatchPackage, LeavesNothingOpen) {
    make_patch("/opt/p", "d1  a.deb\nd2  smu\n", {"smu"});
    const int before = open_descriptors();
    EXPECT_EQ(verify("/opt/p/a.deb"), 0);
    cmpnt_sign_verify_init();
    platform.digest_result = 1;
    EXPECT_EQ(verify("/opt/p/a.deb"), -1);
    EXPECT_EQ(open_descriptors(), before);
}
