#ifndef DESKWATCH_RECORDER_H
#define DESKWATCH_RECORDER_H

#include <functional>
#include <string>

#include "device/device.h"

namespace deskwatch {

/// What a recording is written to, and how.
struct RecordOptions {
    /// A path, or "-" for standard output.
    std::string file;
    /// Whether the names of accounts are replaced.
    bool isAnonymous = false;
    /// Whether a file that exists may be replaced.
    bool isForced = false;
};

/// Writes the state of a booted watch and then what happens on it, a line of JSON each, until SIGINT or SIGTERM arrives
/// or the watch is switched off. Calls `whenReady` when the state is written: what happens from then on is recorded.
/// Throws std::runtime_error when the file cannot be written.
void record(const Device& device, const RecordOptions& options, const std::function<void()>& whenReady);

} // namespace deskwatch

#endif
