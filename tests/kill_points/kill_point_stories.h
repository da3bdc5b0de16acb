#ifndef KILL_POINTS_KILL_POINT_STORIES_H
#define KILL_POINTS_KILL_POINT_STORIES_H

#include "story.h"

namespace kill_points {

/// A story that is killed at each of its steps.
struct KillPointStory {
    harness::Story story;

    /// Fewer steps mean that the tracer has missed some.
    std::size_t leastSteps;

    /// Happens before the story and is killed when it is about to commit, which leaves its journal to the start. Null
    /// when nothing is cut off.
    harness::Event cutOff = nullptr;
};

std::vector<KillPointStory> killPointStories();

} // namespace kill_points

#endif
