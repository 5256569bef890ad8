#include "tests/support/device_test.hh"

class Timer : public DeviceTest {
protected:
    int owner = 0, master = 0, timer = 0;
    cmpnt_timer_context context = {&owner, &master};
};

TEST_F(Timer, IsAddedWithTheLastTwoArgumentsExchanged) {
    platform.timer_result = &timer;
    EXPECT_EQ(cmpnt_common_add_timer(&context, 1, UINTPTR_MAX, 3), 0);
    ASSERT_EQ(platform.timers.size(), 1u);
    EXPECT_EQ(platform.timers[0].master, &master);
    EXPECT_EQ(platform.timers[0].first, 1u);
    EXPECT_EQ(platform.timers[0].third, 3u);
    EXPECT_EQ(platform.timers[0].second, UINTPTR_MAX);
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(Timer, FailsWhenThePlatformAddsNone) {
    EXPECT_EQ(cmpnt_common_add_timer(&context, 1, 2, 3), -1);
    EXPECT_TRUE(
        logged("CMPNT_ERROR", "cmpnt_common_add_timer", "cmpnt vx_thread_add_timer fail.\n"));
}

TEST_F(Timer, RefusesANullContextAndANullMaster) {
    EXPECT_EQ(cmpnt_common_add_timer(nullptr, 1, 2, 3), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_common_add_timer", "param is null\n"));
    context.master = nullptr;
    EXPECT_EQ(cmpnt_common_add_timer(&context, 1, 2, 3), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_common_add_timer", "master is null\n"));
    EXPECT_TRUE(platform.timers.empty());
}
