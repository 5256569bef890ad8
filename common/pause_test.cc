#include "common/pause.hh"

#include <errno.h>
#include <signal.h>
#include <sys/time.h>

#include <chrono>

#include "tests/support/device_test.hh"

namespace {

volatile sig_atomic_t signals = 0;

void count_signal(int) { signals = signals + 1; }

// Signals that restart no call, every so many milliseconds; none with 0.
void raise_every(int milliseconds) {
    struct sigaction action = {};
    action.sa_handler = count_signal;
    sigaction(SIGALRM, &action, nullptr);
    const itimerval timer = {{0, milliseconds * 1000}, {0, milliseconds * 1000}};
    setitimer(ITIMER_REAL, &timer, nullptr);
}

}  // namespace

class Pause : public DeviceTest {};

TEST_F(Pause, LastsASecondHoweverOftenItIsInterrupted) {
    raise_every(150);
    const auto begin = std::chrono::steady_clock::now();
    pause_for_a_second();
    const auto end = std::chrono::steady_clock::now();
    raise_every(0);
    EXPECT_GE(end - begin, std::chrono::seconds(1));
    EXPECT_GE(signals, 3);
}

TEST_F(Pause, SleepsOnlyTheRestAfterAnInterruption) {
    fault::skip_sleeps();
    fault::fail("nanosleep", 1, EINTR, 2);
    pause_for_a_second();
    EXPECT_EQ(fault::calls("nanosleep"), 3);
    EXPECT_EQ(fault::slept(), 1);
}

TEST_F(Pause, IsGivenUpWhereNothingCanSleep) {
    fault::fail("nanosleep", 1, EINVAL);
    pause_for_a_second();
    EXPECT_EQ(fault::calls("nanosleep"), 1);
}
