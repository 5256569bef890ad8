#include "tests/support/device_test.hh"
#include "tests/support/verification.hh"
#include "verify/hash_list.hh"

class PatchDigest : public DeviceTest {
protected:
    static testing::AssertionResult says(const std::string &message) {
        return logged("CMPNT_ERROR", "cmpnt_check_patch_hash_value", message);
    }
};

TEST_F(PatchDigest, IsComparedWithTheOneListedForTheName) {
    list_hash("smu-a", "d1");
    list_hash("smu-b", "digest2");
    EXPECT_EQ(cmpnt_check_patch_hash_value("smu-b", "/opt/patch"), 0);
    EXPECT_EQ(digests_asked(), std::vector<std::string>{"/opt/patch|smu-b|digest2|7"});
    EXPECT_TRUE(logged("CMPNT_TRACE", "cmpnt_check_patch_hash_value",
                       "hash_check hash_name(smu-b) hash_value(digest2)\n"));
    EXPECT_EQ(trace_lines().size(), 1u);
}

TEST_F(PatchDigest, ThatDiffersIsRefused) {
    list_hash("smu-a", "d1");
    for (int32_t result : {1, -1, -7, INT32_MAX}) {
        platform.digest_result = result;
        EXPECT_EQ(cmpnt_check_patch_hash_value("smu-a", "/opt/patch"), -1);
        EXPECT_TRUE(says("do_verify_signature fail ret(" + std::to_string(result) + ").\n"));
    }
    EXPECT_EQ(listed_hashes(), std::vector<std::string>{"smu-a d1"});
}

TEST_F(PatchDigest, OfAFileThatIsNotListedIsRefusedWithoutAWord) {
    EXPECT_EQ(cmpnt_check_patch_hash_value("smu-a", "/opt/patch"), -1);
    list_hash("smu-a", "d1");
    for (const char *name : {"SMU-A", "smu-", "smu-ab", "", "/opt/patch/smu-a"}) {
        EXPECT_EQ(cmpnt_check_patch_hash_value(name, "/opt/patch"), -1) << name;
    }
    EXPECT_TRUE(digests_asked().empty());
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(PatchDigest, NeedsAName) {
    EXPECT_EQ(cmpnt_check_patch_hash_value(nullptr, "/opt/patch"), -1);
    EXPECT_TRUE(says("param is null.\n"));
}

TEST_F(PatchDigest, IsAskedForWithoutADirectoryWhenThereIsNone) {
    list_hash("smu-a", "d1");
    EXPECT_EQ(cmpnt_check_patch_hash_value("smu-a", nullptr), 0);
    EXPECT_EQ(digests_asked(), std::vector<std::string>{"|smu-a|d1|2"});
}

TEST_F(PatchDigest, IsFoundByAnIndexAsWell) {
    for (int i = 0; i < 50; i++) {
        list_hash("smu-" + std::to_string(i), "d" + std::to_string(i));
    }
    const HashIndex index;
    EXPECT_EQ(cmpnt_check_patch_hash_value("smu-49", "/opt", &index), 0);
    EXPECT_EQ(cmpnt_check_patch_hash_value("smu-50", "/opt", &index), -1);
    EXPECT_EQ(cmpnt_check_patch_hash_value(nullptr, "/opt", &index), -1);
    EXPECT_EQ(digests_asked(), std::vector<std::string>{"/opt|smu-49|d49|3"});
}
