#include "verify/whitelist_change.hh"

#include <stdint.h>

#include "tests/support/device_test.hh"
#include "verify/dynamic_whitelist.hh"

namespace {

constexpr char changer[] = "cmpnt_dynamic_whitelist_operate";

whitelist_change_request request_of(int32_t channel, int32_t status, const std::string &path) {
    whitelist_change_request request = {};
    request.channel = channel;
    request.change_status = status;
    snprintf(request.file_path, sizeof(request.file_path), "%s", path.c_str());
    return request;
}

}  // namespace

class WhitelistChangeTest : public DeviceTest {};

TEST_F(WhitelistChangeTest, PublishesTheRecordInTheDataStore) {
    for (int32_t status : {0, 1, 2, 3, -1}) {
        platform.whitelist_changes.clear();
        platform.mom.clear();
        whitelist_change_request request = request_of(0, status, "/usr/bin/x");
        EXPECT_EQ(cmpnt_dynamic_whitelist_operate(UINT32_MAX, &request), 0);
        EXPECT_EQ(platform.whitelist_changes,
                  (std::vector<WhitelistChange>{{true, "/usr/bin/x", "cmpnt_upgrade_c", status}}));
        ASSERT_EQ(platform.mom.size(), 1u);
        const MomCall &call = platform.mom[0];
        EXPECT_EQ(call.operation, "set");
        EXPECT_EQ(call.store, UINT32_MAX);
        EXPECT_EQ(call.number, 3);
        EXPECT_EQ(call.message_name, "p_utils.sv_whitelist_info");
        EXPECT_EQ(call.reserved, nullptr);
        EXPECT_EQ(call.context, nullptr);
    }
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(WhitelistChangeTest, FailsWithTheDataStore) {
    for (int32_t result : {-1, 1, 7}) {
        forget_log();
        platform.set_result = result;
        whitelist_change_request request = request_of(0, 2, "/usr/bin/x");
        EXPECT_EQ(cmpnt_dynamic_whitelist_operate(1, &request), -1);
        EXPECT_TRUE(logged("CMPNT_ERROR", changer, "vx_mom_set fail\n"));
        EXPECT_EQ(trace_messages().size(), 1u);
    }
}

TEST_F(WhitelistChangeTest, CallsTheServiceItself) {
    for (int32_t status : {0, 2, 3, INT32_MIN}) {
        platform.whitelist_changes.clear();
        whitelist_change_request request = request_of(1, status, std::string(259, 'x'));
        EXPECT_EQ(cmpnt_dynamic_whitelist_operate(0, &request), 0);
        EXPECT_EQ(platform.whitelist_changes,
                  (std::vector<WhitelistChange>{
                      {false, std::string(259, 'x'), "cmpnt_upgrade_c", status}}));
    }
    EXPECT_TRUE(platform.mom.empty());
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(WhitelistChangeTest, FailsWithTheServiceAtMinusOneOnly) {
    whitelist_change_request request = request_of(1, 2, "/usr/bin/x");
    for (int32_t result : {0, 1, -2}) {
        platform.whitelist_result = result;
        EXPECT_EQ(cmpnt_dynamic_whitelist_operate(0, &request), 0) << result;
    }
    EXPECT_FALSE(exists(trace_path()));
    platform.whitelist_result = -1;
    EXPECT_EQ(cmpnt_dynamic_whitelist_operate(0, &request), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", changer, "safe_verify_whitelist_update fail\n"));
}

TEST_F(WhitelistChangeTest, RefusesOtherChannelsAndNullSilently) {
    for (int32_t channel : {2, 3, -1, INT32_MAX, INT32_MIN}) {
        whitelist_change_request request = request_of(channel, 2, "/usr/bin/x");
        EXPECT_EQ(cmpnt_dynamic_whitelist_operate(1, &request), -1) << channel;
    }
    EXPECT_EQ(cmpnt_dynamic_whitelist_operate(1, nullptr), -1);
    EXPECT_TRUE(platform.whitelist_changes.empty());
    EXPECT_FALSE(exists(trace_path()));
}
