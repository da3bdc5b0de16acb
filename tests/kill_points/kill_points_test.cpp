#include <gtest/gtest.h>

#include <iostream>

#include "apart.h"
#include "stage.h"
#include "stories.h"

namespace kill_points {

namespace {

/// Stops the story before and behind each of its steps. Returns the number of stops.
std::size_t stopEverywhere(const Story& story) {
    Stage stage(story);
    stage.rehearse();
    int reached = 0;
    std::size_t stops = 0;
    for (std::size_t step = 0; step < stage.steps().size(); ++step) {
        for (const auto moment : {Stop::Moment::Before, Stop::Moment::After}) {
            SCOPED_TRACE(std::string(story.name) + ": stopped " +
                         (moment == Stop::Moment::Before ? "before " : "behind ") + stage.steps()[step]);
            const int state = stage.stopAt({step, moment});
            ++stops;
            if (state == failed) {
                ADD_FAILURE() << "see above";
                continue;
            }
            EXPECT_GE(state, reached) << "a row is older than at an earlier stop";
            reached = state;
        }
    }
    EXPECT_EQ(stage.states().at(static_cast<std::size_t>(reached)), stage.states().back());
    std::cout << "kill points: " << story.name << ": " << stage.steps().size() << " steps\n";
    return stops;
}

TEST(KillPoints, ServiceStoppedAtAnyStepHasTheOldRowsOrTheNewOnesAndGoesOn) {
    std::size_t stops = 0;
    const auto all = stories();
    for (const auto& story : all) {
        stops += stopEverywhere(story);
    }
    if (!HasFailure()) {
        std::cout << "kill points: " << all.size() << " stories, " << stops << " stops, all held\n";
    }
}

} // namespace

} // namespace kill_points
