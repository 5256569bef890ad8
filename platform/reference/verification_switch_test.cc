#include "platform/reference/reference_platform.h"
#include "tests/support/device_test.hh"

namespace {

class VerificationSwitchTest : public DeviceTest {};

TEST_F(VerificationSwitchTest, IsOnWhileTheSwitchFileExists) {
    EXPECT_EQ(0, safe_verify_switch_status(1, 2, 3, 4));
    write_file("/var/cache/opkg/.cmpnt_safe_verify_config", "");
    EXPECT_NE(0, safe_verify_switch_status(0, 0, 0, 0));
    remove_tree("/var/cache/opkg/.cmpnt_safe_verify_config");
    EXPECT_EQ(0, safe_verify_switch_status(0, 0, 0, 0));
}

TEST_F(VerificationSwitchTest, IsWhatTheLibrarySwitchesOn) {
    make_directories("/var/cache/opkg");
    EXPECT_EQ(0, cmpnt_safe_verify_enable(0, 0, 0, 0));
    ASSERT_EQ(0, cmpnt_enable_safe_verify());
    EXPECT_NE(0, cmpnt_safe_verify_enable(0, 0, 0, 0));
}

}  // namespace
