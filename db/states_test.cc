#include "tests/support/device_test.hh"

class States : public DeviceTest {};

TEST_F(States, CodesHaveTheirWords) {
    const char *const words[] = {"Init",
                                 "Install_ready",
                                 "installed",
                                 "Active_ready",
                                 "active",
                                 "Active_cold",
                                 "running",
                                 "Deactive_cold",
                                 "Deactive_ready",
                                 "invalid_hp_active",
                                 "invalid_hp_running",
                                 "invalid_active_ready",
                                 "invalid_active_cold",
                                 "invalid_deactive_ready",
                                 "invalid_deactive_cold"};
    for (int32_t code = 0; code < 15; code++) {
        EXPECT_STREQ(cmpnt_conver_state_to_str(code), words[code]);
    }
}

TEST_F(States, OtherCodesAreUnknown) {
    for (int32_t code : {15, -1, 100, INT32_MAX, INT32_MIN}) {
        EXPECT_STREQ(cmpnt_conver_state_to_str(code), "Unknow");
    }
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(States, ThePackageManagersWordsAreUnderstood) {
    EXPECT_EQ(cmpnt_conver_state_to_int("installed"), 2);
    EXPECT_EQ(cmpnt_conver_state_to_int("active"), 4);
    EXPECT_EQ(cmpnt_conver_state_to_int("invalid_hp_active"), 4);
    EXPECT_EQ(cmpnt_conver_state_to_int("running"), 6);
    EXPECT_EQ(cmpnt_conver_state_to_int("invalid_hp_running"), 6);
}

TEST_F(States, OtherWordsMeanInit) {
    for (const char *word :
         {"", "Init", "Install_ready", "Active_ready", "Active_cold", "Deactive_cold",
          "Deactive_ready", "invalid_active_ready", "invalid_active_cold", "invalid_deactive_ready",
          "invalid_deactive_cold", "Unknow", "Running", "ACTIVE", " active", "active ", "activ",
          "actives", "install"}) {
        EXPECT_EQ(cmpnt_conver_state_to_int(word), 0) << word;
    }
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(States, ANullWordIsReported) {
    EXPECT_EQ(cmpnt_conver_state_to_int(nullptr), 0);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_conver_state_to_int", "param is null\n"));
}

TEST_F(States, SyncFlagsHaveTheirWords) {
    EXPECT_STREQ(cmpnt_conver_sync_flag_to_str(0), "Init");
    EXPECT_STREQ(cmpnt_conver_sync_flag_to_str(1), "Finish");
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(States, OtherSyncFlagsAreUnknownAndReported) {
    for (int32_t flag : {2, -1, INT32_MIN}) {
        EXPECT_STREQ(cmpnt_conver_sync_flag_to_str(flag), "Unknow");
        EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_conver_sync_flag_to_str",
                           "sync_flag error: " + std::to_string(flag) + "\n"));
    }
}
