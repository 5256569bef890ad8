#include "tests/support/device_test.hh"
#include "tests/support/verification.hh"

using Texts = std::vector<std::string>;

class SafeVerify : public DeviceTest {
protected:
    static testing::AssertionResult says(const std::string &message) {
        return logged("CMPNT_ERROR", "cmpnt_safe_verify", message);
    }
};

TEST_F(SafeVerify, RefusesNullBeforeItAsksWhetherItIsSwitchedOn) {
    EXPECT_EQ(cmpnt_safe_verify(nullptr, 1, 2, 3), -1);
    EXPECT_TRUE(says("param is null.\n"));
    EXPECT_TRUE(platform.switch_questions.empty());
}

TEST_F(SafeVerify, HandsItsArgumentsToTheSwitchAsTheyAre) {
    const char path[] = "/opt/x.ipk";
    EXPECT_EQ(cmpnt_safe_verify(path, UINTPTR_MAX, 0, 4), 0);
    EXPECT_EQ(platform.switch_questions,
              (std::vector<std::vector<uintptr_t>>{
                  {reinterpret_cast<uintptr_t>(path), UINTPTR_MAX, 0, 4}}));
}

TEST_F(SafeVerify, PassesEverythingWhenItIsSwitchedOff) {
    for (const char *path : {"/opt/x.ipk", "/opt/x.deb", "/opt/x.bin", "no-suffix", "x.", ""}) {
        EXPECT_EQ(cmpnt_safe_verify(path, 0, 0, 0), 0) << path;
    }
    EXPECT_TRUE(signatures_asked().empty());
    EXPECT_FALSE(exists(trace_path()));
    EXPECT_FALSE(exists(scratch));
}

TEST_F(SafeVerify, IsOnWhenTheSwitchAnswersAnythingButZero) {
    for (int32_t answer : {1, 2, -1}) {
        platform.switch_result = answer;
        EXPECT_EQ(cmpnt_safe_verify("/opt/x.deb", 0, 0, 0), -1) << answer;
    }
}

TEST_F(SafeVerify, NeedsASuffix) {
    platform.switch_result = 1;
    for (const std::string &path : Texts{"/opt/name", "", "/opt/name.", "name"}) {
        forget_log();
        EXPECT_EQ(cmpnt_safe_verify(path.c_str(), 0, 0, 0), -1) << path;
        EXPECT_TRUE(says("get_file_type fail, file_name(" + path + ").\n"));
        EXPECT_EQ(traced("trace", "cmpnt_safe_verify", "cmpnt_safe_verify path(" + path + ")\n"),
                  0);
    }
}

TEST_F(SafeVerify, RefusesASuffixThatIsTooLong) {
    platform.switch_result = 1;
    const std::string path = "/opt/x." + std::string(300, 's');
    EXPECT_EQ(cmpnt_safe_verify(path.c_str(), 0, 0, 0), -1);
    EXPECT_TRUE(says("get_file_type fail, file_name(" + path + ").\n"));
}

// The suffix is what follows the last "." of the whole path.
TEST_F(SafeVerify, PassesOtherSuffixesUnchecked) {
    platform.switch_result = 1;
    for (const std::string &path : Texts{"/opt/x.bin", "/opt/x.tar.gz", "/a.d/file", "/a.ipk/file",
                                         "/opt/x.IPK", "/opt/x.Deb", "/opt/x.ipk ", "/opt/x.debx",
                                         "/opt/x.de", "/opt/x.deb/", "x.ipk.bak"}) {
        forget_log();
        EXPECT_EQ(cmpnt_safe_verify(path.c_str(), 0, 0, 0), 0) << path;
        EXPECT_TRUE(
            logged("CMPNT_TRACE", "cmpnt_safe_verify", "cmpnt_safe_verify path(" + path + ")\n"));
        EXPECT_EQ(trace_lines().size(), 1u);
    }
    EXPECT_TRUE(signatures_asked().empty());
    EXPECT_TRUE(digests_asked().empty());
}

TEST_F(SafeVerify, ChecksWhatEndsInItsTwoSuffixesWhateverStandsBefore) {
    platform.switch_result = 1;
    platform.signature_result = 0;
    for (const char *path : {".ipk", ".deb", "/a.b/c.ipk", "/opt/.deb", "x.bin.deb", "x..ipk"}) {
        platform.signature_questions.clear();
        EXPECT_EQ(cmpnt_safe_verify(path, 0, 0, 0), -1) << path;
        EXPECT_EQ(signatures_asked().size(), 1u) << path;
    }
}
