#include <errno.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/device_test.hh"

namespace {

const std::string switch_file = "/var/cache/opkg/.cmpnt_safe_verify_config";

std::string open_message(int error) {
    return "open file(" + switch_file + ") fail, error(" + strerror(error) + ").\n";
}

}  // namespace

class SwitchFile : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        make_directories("/var/cache/opkg");
    }
};

TEST_F(SwitchFile, IsCreatedEmpty) {
    const mode_t mask = umask(0);
    EXPECT_EQ(cmpnt_enable_safe_verify(), 0);
    umask(mask);
    EXPECT_EQ(size_of(switch_file), 0);
    EXPECT_EQ(mode_of(switch_file), 0755);
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(SwitchFile, IsEmptiedAndKeepsItsMode) {
    write_file(switch_file, "text");
    ASSERT_EQ(chmod(switch_file.c_str(), 0600), 0);
    EXPECT_EQ(cmpnt_enable_safe_verify(), 0);
    EXPECT_EQ(size_of(switch_file), 0);
    EXPECT_EQ(mode_of(switch_file), 0600);
}

TEST_F(SwitchFile, LeavesNoDescriptorOpen) {
    const int descriptors = open_descriptors();
    EXPECT_EQ(cmpnt_enable_safe_verify(), 0);
    EXPECT_EQ(open_descriptors(), descriptors);
}

TEST_F(SwitchFile, FailsWithoutItsDirectory) {
    remove_tree("/var/cache");
    EXPECT_EQ(cmpnt_enable_safe_verify(), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_enable_safe_verify", open_message(ENOENT)));
    EXPECT_FALSE(exists(switch_file));
}

TEST_F(SwitchFile, FailsWhereADirectoryIsInTheWay) {
    make_directories(switch_file);
    EXPECT_EQ(cmpnt_enable_safe_verify(), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_enable_safe_verify", open_message(EISDIR)));
}

TEST_F(SwitchFile, AsksNobodyWhetherVerificationIsOn) {
    EXPECT_EQ(cmpnt_enable_safe_verify(), 0);
    EXPECT_TRUE(platform.switch_questions.empty());
}
