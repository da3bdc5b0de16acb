#include "records/idle_exit.h"

#include <gtest/gtest.h>

namespace deskwatch {
namespace {

using std::chrono::seconds;

constexpr pid_t serviceProcess = 7;

std::string line(const std::string& process, const std::string& text) {
    return "2026-11-22T09:41:20.123Z W/TESK_CONSUMER(" + process + "): TeskConsumerKiller.cpp: f(66) >  " + text + "\n";
}

const std::string decided = line("    7", "REFRESH killer!");
const std::string left = line("    7", "Leave");
const std::chrono::system_clock::time_point decision(std::chrono::milliseconds(1'795'340'480'123)); // that line's time

TEST(IdleExit, ServiceThatDecidedNothingGoesOn) {
    EXPECT_EQ(idleExitOf("", serviceProcess, decision), std::nullopt);
    EXPECT_EQ(idleExitOf(left, serviceProcess, decision), std::nullopt);
}

TEST(IdleExit, TimeIsCountedFromTheDecision) {
    EXPECT_EQ(idleExitOf(decided, serviceProcess, decision), (IdleExit{seconds(10), true}));
    EXPECT_EQ(idleExitOf(decided + left, serviceProcess, decision + seconds(4)), (IdleExit{seconds(6), true}));
    EXPECT_EQ(idleExitOf(decided, serviceProcess, decision + seconds(11)), (IdleExit{seconds(0), true}));
}

TEST(IdleExit, TimeIsNotKnownWhenTheClockWasSet) {
    for (const auto jump : {seconds(-2), seconds(-86'400), seconds(13), seconds(86'400)}) {
        EXPECT_EQ(idleExitOf(decided, serviceProcess, decision + jump), (IdleExit{seconds(10), false}));
    }
}

TEST(IdleExit, TimeIsNotKnownWhenTheLogHasNoTimes) {
    const auto untimed = decided.substr(decided.find("W/"));
    EXPECT_EQ(idleExitOf(untimed, serviceProcess, decision), (IdleExit{seconds(10), false}));
}

TEST(IdleExit, LaterDecisionCounts) {
    const std::string stopped = line("    7", "STOP killer!");
    EXPECT_EQ(idleExitOf(decided + stopped, serviceProcess, decision), std::nullopt);
    EXPECT_EQ(idleExitOf(stopped + decided, serviceProcess, decision), (IdleExit{seconds(10), true}));
}

TEST(IdleExit, DecisionOfAnEarlierProcessIsNoneOfThisOne) {
    EXPECT_EQ(idleExitOf(line("    8", "REFRESH killer!"), serviceProcess, decision), std::nullopt);
    EXPECT_EQ(idleExitOf(line("   77", "REFRESH killer!"), serviceProcess, decision), std::nullopt);
}

} // namespace
} // namespace deskwatch
