#ifndef KILL_POINTS_STORIES_H
#define KILL_POINTS_STORIES_H

#include <optional>
#include <vector>

#include "service_run.h"

namespace kill_points {

/// What a service did when it was stopped.
struct Story {
    const char* name;
    /// How the store came to be; nothing for a device on which the service never ran.
    std::optional<std::vector<Request>> before;
    /// A request that was cut off when it was about to commit, which leaves its journal to the start.
    std::optional<Request> cutOff;
    std::vector<Request> requests;
    /// Fewer steps mean that the tracer has missed some.
    std::size_t leastSteps;
};

std::vector<Story> stories();

/// A policy that no story stores.
Request freshAccount();
constexpr int freshAccountId = 77;

} // namespace kill_points

#endif
