#include "records/idle_exit.h"

#include <gtest/gtest.h>

namespace deskwatch {
namespace {

using std::chrono::seconds;

constexpr pid_t serviceProcess = 7;

std::string line(const std::string& process, const std::string& text) {
    return "W/TESK_CONSUMER(" + process + "): TeskConsumerKiller.cpp: f(66) >  " + text + "\n";
}

const std::string decided = line("    7", "REFRESH killer!");
const std::string left = line("    7", "Leave");

TEST(IdleExit, ServiceThatDecidedNothingGoesOn) {
    EXPECT_EQ(idleExitOf("", serviceProcess, seconds(0)), std::nullopt);
    EXPECT_EQ(idleExitOf(left, serviceProcess, seconds(0)), std::nullopt);
}

TEST(IdleExit, TimeIsKnownWhenTheDecisionIsTheLastThatHappened) {
    EXPECT_EQ(idleExitOf(decided, serviceProcess, seconds(0)), (IdleExit{seconds(10), true}));
    EXPECT_EQ(idleExitOf(decided + left + left, serviceProcess, seconds(4)), (IdleExit{seconds(6), true}));
    EXPECT_EQ(idleExitOf(decided, serviceProcess, seconds(11)), (IdleExit{seconds(0), true}));
}

TEST(IdleExit, TimeIsNotKnownWhenSomethingWasWrittenSince) {
    EXPECT_EQ(idleExitOf(decided + line("    7", "Enter"), serviceProcess, seconds(4)), (IdleExit{seconds(10), false}));
    EXPECT_EQ(idleExitOf(decided + "dbus-daemon: something\n", serviceProcess, seconds(4)),
              (IdleExit{seconds(10), false}));
}

TEST(IdleExit, LaterDecisionCounts) {
    const std::string stopped = line("    7", "STOP killer!");
    EXPECT_EQ(idleExitOf(decided + stopped, serviceProcess, seconds(0)), std::nullopt);
    EXPECT_EQ(idleExitOf(stopped + decided, serviceProcess, seconds(0)), (IdleExit{seconds(10), true}));
}

TEST(IdleExit, DecisionOfAnEarlierProcessIsNoneOfThisOne) {
    EXPECT_EQ(idleExitOf(line("    8", "REFRESH killer!"), serviceProcess, seconds(0)), std::nullopt);
    EXPECT_EQ(idleExitOf(line("   77", "REFRESH killer!"), serviceProcess, seconds(0)), std::nullopt);
}

} // namespace
} // namespace deskwatch
