#ifndef DESKWATCH_IDLE_EXIT_H
#define DESKWATCH_IDLE_EXIT_H

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string_view>

namespace deskwatch {

/// That the service ends itself because nothing is left to wait for.
struct IdleExit {
    std::chrono::seconds in{0};
    /// Otherwise it may come earlier: the log does not tell when the time began, or the clock has been set since.
    bool isExact = false;

    bool operator==(const IdleExit& other) const { return in == other.in && isExact == other.isExact; }
};

/// Reads from the end of a watch's log whether the process `service` is about to end itself. The time of the decision
/// stands in its line; it is of no use when the clock has been set since.
std::optional<IdleExit> idleExitOf(std::string_view log, pid_t service, std::chrono::system_clock::time_point now);

} // namespace deskwatch

#endif
