#ifndef KILL_POINTS_TRACED_RUN_H
#define KILL_POINTS_TRACED_RUN_H

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kill_points {

/// Where a run is killed: at its nth step, counted from 0, before the step has an effect or after it.
struct KillPoint {
    enum class Moment { Before, After };

    std::size_t step;
    Moment moment;
};

/// What became of a run.
struct TracedRun {
    /// The system calls that wrote below the folder, in order, up to the kill point.
    std::vector<std::string> steps;
    /// The exit status; nothing when the run was killed.
    std::optional<int> status;
};

/// Runs the body in a process of its own, follows what it writes below the folder (an absolute path without symbolic
/// links) and kills it at the point, if there is one. Throws when this machine allows no tracing.
TracedRun runTraced(const std::string& folder, const std::function<void()>& body,
                    const std::optional<KillPoint>& point = std::nullopt);

} // namespace kill_points

#endif
