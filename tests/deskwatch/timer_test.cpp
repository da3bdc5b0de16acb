#include "device/timer.h"

#include <gtest/gtest.h>

#include <optional>

namespace deskwatch {
namespace {

using namespace std::chrono_literals;

/// What was due before has happened then.
void letPass(std::chrono::milliseconds time) {
    Timer timer;
    timer.start(time, [] {});
    while (timer.isRunning()) {
        g_main_context_iteration(nullptr, TRUE);
    }
}

TEST(Timer, CallsOnceAndThenRunsNoLonger) {
    int calls = 0;
    Timer timer;
    timer.start(1ms, [&calls] { ++calls; });
    EXPECT_TRUE(timer.isRunning());
    letPass(20ms);
    EXPECT_EQ(calls, 1);
    EXPECT_FALSE(timer.isRunning());
}

TEST(Timer, TimeThatIsLongerThanGlibCountsIsNotCutShort) {
    Timer timer;
    timer.start(std::chrono::milliseconds(1LL << 32) + 1ms, [] {});
    letPass(20ms);
    EXPECT_TRUE(timer.isRunning());
}

TEST(Timer, ForgetsWhatItWasStartedForBefore) {
    int first = 0;
    int second = 0;
    Timer timer;
    timer.start(1ms, [&first] { ++first; });
    timer.start(1ms, [&second] { ++second; });
    letPass(20ms);
    EXPECT_EQ(first, 0);
    EXPECT_EQ(second, 1);
}

TEST(Timer, CanBeStartedAgainByWhatItCalls) {
    int calls = 0;
    Timer timer;
    timer.start(1ms, [&] { timer.start(1ms, [&calls] { ++calls; }); });
    while (timer.isRunning()) {
        g_main_context_iteration(nullptr, TRUE);
    }
    EXPECT_EQ(calls, 1);
}

TEST(Timer, RepeatsUntilItIsDestroyed) {
    int calls = 0;
    std::optional<Timer> timer(std::in_place);
    timer->repeat(1ms, [&calls] { ++calls; });
    while (calls < 3) {
        g_main_context_iteration(nullptr, TRUE);
    }
    timer.reset();
    letPass(20ms);
    EXPECT_EQ(calls, 3);
}

} // namespace
} // namespace deskwatch
