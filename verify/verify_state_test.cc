#include <string.h>

#include "common/working_record.hh"
#include "tests/support/device_test.hh"
#include "tests/support/verification.hh"

class VerifyState : public DeviceTest {};

TEST_F(VerifyState, StartsWithNothingVerified) {
    g_variable.single_patch_index = 7;
    g_variable.global_hashes_loaded = 1;
    memset(g_variable.verified_patch_directory, 'x', sizeof(g_variable.verified_patch_directory));
    list_hash("smu-a", "d1");
    cmpnt_sign_verify_init();
    EXPECT_EQ(g_variable.global_hashes_loaded, 0u);
    for (char byte : g_variable.verified_patch_directory) {
        ASSERT_EQ(byte, '\0');
    }
    EXPECT_EQ(g_variable.single_patch_index, 7);
    EXPECT_EQ(listed_hashes(), std::vector<std::string>{"smu-a d1"});
}

TEST_F(VerifyState, RemembersWhatWasVerifiedWhenTheDigestsAreFreed) {
    g_variable.global_hashes_loaded = 1;
    snprintf(g_variable.verified_patch_directory, sizeof(g_variable.verified_patch_directory),
             "/opt/patch");
    list_hash("smu-a", "d1");
    cmpnt_free_sign_verify();
    EXPECT_EQ(hash_verify_list.next, &hash_verify_list);
    EXPECT_EQ(hash_verify_list.prev, &hash_verify_list);
    EXPECT_EQ(g_variable.global_hashes_loaded, 1u);
    EXPECT_STREQ(g_variable.verified_patch_directory, "/opt/patch");
    cmpnt_free_sign_verify();
    EXPECT_EQ(hash_verify_list.next, &hash_verify_list);
    EXPECT_FALSE(exists(trace_path()));
}
