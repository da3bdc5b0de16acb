#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <iostream>

#include "fault_runs.h"

namespace {

class EveryCallThatCanFail : public ::testing::TestWithParam<FaultStory> {
protected:
    static void TearDownTestSuite() {
        std::cout << "faults: " << allRuns << " runs of " << playedStories << " stories\n";
    }

    static inline int allRuns = 0;
    static inline int playedStories = 0;
};

TEST_P(EveryCallThatCanFail, LosesNothingAndLeavesTheRestDone) {
    FaultRuns runs(GetParam(), FAULTS_RUN_EACH);
    runs.failEachCall();
    if (runs.made() == runs.count()) {
        EXPECT_EQ(runs.ends(), GetParam().ends);
    }
    runs.failEachFunction();
    runs.failEachTwoFunctions();

    for (const auto& problem : runs.problems()) {
        ADD_FAILURE() << problem;
    }
    allRuns += runs.made();
    ++playedStories;
    std::cout << "faults: " << runs.made() << " runs of " << GetParam().story.name << (HasFailure() ? "" : ", all held")
              << '\n';
    EXPECT_GE(runs.count(), GetParam().leastRuns);
}

INSTANTIATE_TEST_SUITE_P(Story, EveryCallThatCanFail, ::testing::ValuesIn(faultStories()),
                         [](const auto& story) { return story.param.story.name; });

} // namespace

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    const char* const memory = "/dev/shm"; // thousands of small databases need not reach a disk
    if (access(memory, W_OK | X_OK) == 0) {
        setenv("TMPDIR", memory, 0);
    }
    return RUN_ALL_TESTS();
}
