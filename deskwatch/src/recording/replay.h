#ifndef DESKWATCH_REPLAY_H
#define DESKWATCH_REPLAY_H

#include <optional>
#include <string>

#include "recording/recording.h"

namespace deskwatch {

/// How a replay went.
struct ReplayOutcome {
    /// The effects that were as recorded, up to the first that was not.
    std::size_t equal = 0;
    /// Where it went another way, with what was recorded and what happened; none when every effect was equal.
    std::optional<std::string> difference;
};

/// Lets the service of a watch that was booted in the recording's first state have what came to it in the recording,
/// and compares all that it does: what it writes, and what it sends to each application, in order. Throws
/// std::runtime_error when the watch or an application of it does not answer.
ReplayOutcome replay(const Device& device, const Recording& recording);

} // namespace deskwatch

#endif
