#include <stdlib.h>
#include <string.h>
#include <sys/time.h>
#include <time.h>

#include "tests/support/device_test.hh"

class Timestamp : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        setenv("TZ", "UTC", 1);
        tzset();
        platform.clock = 1709288102;  // 2024-03-01 10:15:02 UTC
        memset(text, '#', sizeof(text));
        text[sizeof(text) - 1] = '\0';
    }
    char text[64];
};

TEST_F(Timestamp, HasSecondsInModeZero) {
    cmppnt_get_time(text, sizeof(text), 0);
    EXPECT_STREQ(text, "2024-03-01 10:15:02");
}

TEST_F(Timestamp, AddsMicrosecondsInModeOne) {
    cmppnt_get_time(text, sizeof(text), 1);
    ASSERT_EQ(strlen(text), 26u);
    EXPECT_EQ(std::string(text, 20), "2024-03-01 10:15:02-");
    EXPECT_EQ(strspn(text + 20, "0123456789"), 6u);
}

TEST_F(Timestamp, HasTheMicrosecondsOfTheMoment) {
    struct timeval before, after;
    gettimeofday(&before, nullptr);
    cmppnt_get_time(text, sizeof(text), 1);
    gettimeofday(&after, nullptr);
    const long shown = strtol(text + 20, nullptr, 10);
    const long since_before = (shown - before.tv_usec + 1000000) % 1000000;
    EXPECT_LE(since_before,
              (after.tv_sec - before.tv_sec) * 1000000 + after.tv_usec - before.tv_usec)
        << shown << " after " << before.tv_usec;
}

TEST_F(Timestamp, HasAYearOfFiveDigitsWhenItIsThatLate) {
    if (sizeof(time_t) < sizeof(int64_t)) {
        GTEST_SKIP() << "the clock ends in 2038";
    }
    platform.clock = static_cast<time_t>(INT64_C(400000000000));
    cmppnt_get_time(text, sizeof(text), 0);
    EXPECT_STREQ(text, "14645-06-30 15:06:40");
}

TEST_F(Timestamp, LeavesTheBufferWhenTheClockIsBeyondTheCalendar) {
    if (sizeof(time_t) < sizeof(int64_t)) {
        GTEST_SKIP() << "every time has a date";
    }
    const std::string before = text;
    platform.clock = static_cast<time_t>(INT64_MAX);
    cmppnt_get_time(text, sizeof(text), 0);
    EXPECT_EQ(text, before);
}

TEST_F(Timestamp, IsCutToTheBuffer) {
    cmppnt_get_time(text, 5, 0);
    EXPECT_STREQ(text, "2024");
    EXPECT_EQ(text[5], '#');
    cmppnt_get_time(text, 1, 1);
    EXPECT_STREQ(text, "");
}

TEST_F(Timestamp, LeavesTheBufferWhenThereIsNoTime) {
    const std::string before = text;
    cmppnt_get_time(text, sizeof(text), 2);
    cmppnt_get_time(text, sizeof(text), -1);
    cmppnt_get_time(text, 0, 0);
    cmppnt_get_time(text, -1, 0);
    cmppnt_get_time(nullptr, 20, 0);
    platform.clock = -1;
    cmppnt_get_time(text, sizeof(text), 0);
    EXPECT_EQ(text, before);
}

TEST_F(Timestamp, IsLocalTime) {
    setenv("TZ", "AAA-3", 1);
    tzset();
    cmppnt_get_time(text, sizeof(text), 0);
    EXPECT_STREQ(text, "2024-03-01 13:15:02");
}
