#ifndef DESKWATCH_RECORDING_H
#define DESKWATCH_RECORDING_H

#include <filesystem>
#include <vector>

#include "device/device.h"
#include "device/first_settings.h"
#include "recording/bus_trace.h"

namespace deskwatch {

/// An event of a recording and the line where it stands.
struct RecordedEvent {
    TraceEvent event;
    std::size_t line = 0;
};

/// What went into the service of a watch and what it did, from a watch without accounts on.
struct Recording {
    DeviceState device;
    bool isServiceRunning = false;
    std::vector<RecordedEvent> events;
};

/// Writes what happens on a booted watch to a file, a line of JSON each, until SIGINT or SIGTERM arrives or the watch
/// is switched off. Throws std::runtime_error when the watch has stored accounts already, whose policies a replay could
/// not know, or the file cannot be written.
void record(const Device& device, const std::filesystem::path& file);

/// Reads a recording. Throws std::runtime_error with file and line when the file is not one.
Recording readRecording(const std::filesystem::path& file);

} // namespace deskwatch

#endif
