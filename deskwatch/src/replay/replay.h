#ifndef DESKWATCH_REPLAY_H
#define DESKWATCH_REPLAY_H

#include <optional>
#include <string>
#include <vector>

#include "replay/recording.h"

namespace deskwatch {

/// An effect of the service and the line of the recording where it is, or, for one that happened, the line of the last
/// input before it.
struct ReplayedEffect {
    TraceEvent event;
    std::size_t line = 0;
};

/// Where recording and replay differ first: an effect that is another, is missing, or came in addition.
struct Difference {
    /// The line of the recorded effect; of the last one of its kind when there is one too many.
    std::size_t line = 0;
    std::optional<TraceEvent> recorded;
    std::optional<TraceEvent> now;
};

/// What a replay did.
struct ReplayOutcome {
    /// The number of recorded effects that were equal, up to the first difference.
    std::size_t equal = 0;
    std::optional<Difference> difference;
    /// All that the service did.
    std::vector<ReplayedEffect> happened;
};

/// Resumes a fresh watch, brings it into the recording's first state, gives its service all input of the recording, and
/// compares all that it does: what it writes, what it sends to each application, and that it ends, in order. Throws
/// std::runtime_error when the watch does not answer.
ReplayOutcome replay(const Device& device, const std::vector<Application>& applications, const Recording& recording);

/// The difference for a reader: both sides, what the service did before, and the input that led to it; without the last
/// line break.
std::string differenceText(const Recording& recording, const Difference& difference);

/// The recording with the effects that happened in place of the recorded ones. Lines that are still true stay where and
/// as they are.
std::string updatedRecording(const Recording& recording, const std::vector<ReplayedEffect>& happened);

} // namespace deskwatch

#endif
