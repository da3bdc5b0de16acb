#include <gtest/gtest.h>

#include <iostream>

#include "killed_story.h"

namespace kill_points {

namespace {

/// Kills the story before and after each of its steps. Returns the number of kill points.
std::size_t killEverywhere(const KillPointStory& killed) {
    const KilledStory story(killed);
    const auto& name = killed.story.name;
    std::size_t reached = 0;
    std::size_t killPoints = 0;
    for (std::size_t step = 0; step < story.steps().size(); ++step) {
        for (const auto moment : {KillPoint::Moment::Before, KillPoint::Moment::After}) {
            SCOPED_TRACE(name + ": killed " + (moment == KillPoint::Moment::Before ? "before " : "after ") +
                         story.steps()[step]);
            ++killPoints;
            const auto state = story.killAt({step, moment});
            EXPECT_GE(state, reached) << "a row is older than at an earlier kill point";
            reached = state.value_or(reached);
        }
    }
    EXPECT_EQ(reached + 1, story.states());
    std::cout << "kill points: " << name << ": " << story.steps().size() << " steps\n";
    return killPoints;
}

TEST(KillPoints, ServiceKilledAtAnyStepHasTheOldRowsOrTheNewOnesAndGoesOn) {
    std::size_t killPoints = 0;
    const auto all = killPointStories();
    for (const auto& story : all) {
        killPoints += killEverywhere(story);
    }
    if (!HasFailure()) {
        std::cout << "kill points: " << all.size() << " stories, " << killPoints << " kill points, all held\n";
    }
}

} // namespace

} // namespace kill_points
