#include "list/smu_kind.hh"

#include "tests/support/device_test.hh"

// Each as the library asks and as a host does.
TEST(SmuKind, IsABitOfTheOperationFlag) {
    struct {
        int32_t op_flag;
        bool cold, application, hot_patch;
    } const cases[] = {
        {0, false, false, false},     {0x01, true, false, false}, {0x08, false, true, false},
        {0x20, false, false, true},   {0x29, true, true, true},   {0x16, false, false, false},
        {~0x29, false, false, false}, {-1, true, true, true},     {INT32_MIN, false, false, false},
    };
    for (const auto &test : cases) {
        cmpnt_upgrade_value value = {};
        value.op_flag = test.op_flag;
        EXPECT_EQ(is_smu_kind(value, smu_cold), test.cold) << test.op_flag;
        EXPECT_EQ(is_smu_kind(value, smu_application), test.application) << test.op_flag;
        EXPECT_EQ(is_smu_kind(value, smu_hot_patch), test.hot_patch) << test.op_flag;
        EXPECT_EQ(cmpnt_smu_is_cold(test.op_flag), test.cold ? 1 : 0) << test.op_flag;
        EXPECT_EQ(cmpnt_smu_is_app(test.op_flag), test.application ? 1 : 0) << test.op_flag;
        EXPECT_EQ(cmpnt_smu_is_hp(test.op_flag), test.hot_patch ? 1 : 0) << test.op_flag;
    }
}
