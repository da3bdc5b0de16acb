#ifndef DESKWATCH_REPLAY_H
#define DESKWATCH_REPLAY_H

#include <optional>
#include <string>

#include "recording/recording.h"

namespace deskwatch {

/// The outcome of a replay.
struct ReplayOutcome {
    /// The effects that were as recorded, up to the first that was not.
    std::size_t equal = 0;
    /// The first difference, with what was recorded and what happened; none when every effect was equal.
    std::optional<std::string> difference;
};

/// Gives the service of a watch that was booted in the recording's first state all input of the recording, and
/// compares all that it does: what it writes, and what it sends to each application, in order. Throws
/// std::runtime_error when the watch or an application of it does not answer.
ReplayOutcome replay(const Device& device, const Recording& recording);

} // namespace deskwatch

#endif
