#ifndef KILL_POINTS_TRACED_RUN_H
#define KILL_POINTS_TRACED_RUN_H

#include <optional>
#include <string>
#include <vector>

#include "apart.h"

namespace kill_points {

/// Where a run is killed: at its nth step, counted from 0, before the step has an effect or behind it.
struct Stop {
    enum class Moment { Before, After };

    std::size_t step;
    Moment moment;
};

/// What became of a run.
struct TracedRun {
    /// The system calls that wrote below the folder, in order, up to the stop.
    std::vector<std::string> steps;
    /// The exit status; nothing when the run was killed.
    std::optional<int> status;
};

/// Runs the body in a process of its own, follows what it writes below the folder (an absolute path without symbolic
/// links) and kills it at the stop, if there is one. Throws when this machine allows no tracing.
TracedRun runTraced(const std::string& folder, const Body& body, const std::optional<Stop>& stop = std::nullopt);

} // namespace kill_points

#endif
