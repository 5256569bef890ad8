#include "tests/support/device_test.hh"

class VerifySwitch : public DeviceTest {};

TEST_F(VerifySwitch, HandsItsArgumentsOnAndTheAnswerBack) {
    for (int32_t result : {0, 1, -7}) {
        platform.switch_questions.clear();
        platform.switch_result = result;
        EXPECT_EQ(cmpnt_safe_verify_enable(1, UINTPTR_MAX, 3, 4), result);
        EXPECT_EQ(platform.switch_questions,
                  (std::vector<std::vector<uintptr_t>>{{1, UINTPTR_MAX, 3, 4}}));
    }
    EXPECT_FALSE(exists(trace_path()));
}
