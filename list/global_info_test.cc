#include "list/global_info.hh"

#include <string.h>

#include "tests/support/device_test.hh"
#include "tests/support/upgrade_records.hh"

namespace {

constexpr const char *all_states[] = {"Init",
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
                                      "Active",
                                      ""};

bool is_in_force(const std::string &state) {
    return state == "active" || state == "running" || state == "invalid_hp_active" ||
           state == "invalid_hp_running";
}

}  // namespace

class GlobalInfo : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        memset(&before, 'o', sizeof(before));
    }

    cmpnt_upgrade_value before;
};

TEST_F(GlobalInfo, InForceCopiesOnlyRecordsInForce) {
    for (const char *state : all_states) {
        const cmpnt_upgrade_value record = upgrade_record("smu", "pkg", "1.0", state);
        cmpnt_upgrade_value out = before;
        EXPECT_EQ(cmpnt_get_global_info(&out, &record, 1), 0);
        EXPECT_TRUE(same_record(out, is_in_force(state) ? record : before)) << state;
    }
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(GlobalInfo, TheOtherTypesCopyAnyRecord) {
    for (const int32_t type : {2, 3}) {
        for (const char *state : all_states) {
            const cmpnt_upgrade_value record = upgrade_record("smu", "pkg", "1.0", state);
            cmpnt_upgrade_value out = before;
            EXPECT_EQ(cmpnt_get_global_info(&out, &record, type), 0);
            EXPECT_TRUE(same_record(out, record)) << state;
        }
    }
}

TEST_F(GlobalInfo, RejectsAnyOtherType) {
    const cmpnt_upgrade_value record = upgrade_record("smu", "pkg");
    for (const int32_t type : {0, 4, -1, INT32_MAX}) {
        cmpnt_upgrade_value out = before;
        EXPECT_EQ(cmpnt_get_global_info(&out, &record, type), -1);
        EXPECT_TRUE(same_record(out, before));
        EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_get_global_info",
                           "newest_type(" + std::to_string(type) + ") error\n"));
    }
}

TEST_F(GlobalInfo, RefusesNull) {
    cmpnt_upgrade_value out = before;
    EXPECT_EQ(cmpnt_get_global_info(&out, nullptr, 2), -1);
    EXPECT_TRUE(logged("CLIENT_ERROR", "cmpnt_get_global_info", "param is null.\n"));
    EXPECT_TRUE(same_record(out, before));
    forget_log();
    EXPECT_EQ(cmpnt_get_global_info(nullptr, &before, 2), -1);
    EXPECT_TRUE(logged("CLIENT_ERROR", "cmpnt_get_global_info", "param is null.\n"));
}
