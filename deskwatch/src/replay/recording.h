#ifndef DESKWATCH_RECORDING_H
#define DESKWATCH_RECORDING_H

#include <filesystem>
#include <string>
#include <vector>

#include "recording/bus_trace.h"
#include "recording/recorded_state.h"

namespace deskwatch {

/// An event of a recording, the line where it stands, and that line.
struct RecordedEvent {
    TraceEvent event;
    std::size_t line = 0;
    std::string text;
};

/// What a watch was, what went into its service, and what the service did.
struct Recording {
    RecordedState state;
    /// The first line.
    std::string head;
    /// The first format did not write wipes down.
    bool hasWipes = true;
    std::vector<RecordedEvent> events;
};

/// Reads a recording from a file, or from standard input ("-"). Throws std::runtime_error with file, line and column
/// when it is not one.
Recording readRecording(const std::filesystem::path& file);

} // namespace deskwatch

#endif
