#ifndef DESKWATCH_RECORDED_STATE_H
#define DESKWATCH_RECORDED_STATE_H

#include <map>
#include <string>
#include <vector>

#include "recording/bus_trace.h"
#include "session/device_session.h"

namespace deskwatch {

/// What a watch is when a recording begins: all that decides what its service does from then on.
struct RecordedState {
    bool isServiceRunning = false;
    /// The applications beside the service that run.
    std::vector<std::string> running;
    /// The applications that owe the service an answer to a launch request.
    std::vector<std::string> waiting;
    /// The settings store by path: keys, device policy, the service's preferences, and the functions that fail.
    std::map<std::string, TraceEvent> settings;
    /// The stored accounts (recorded_store.h), JSON.
    std::string store = "null";
};

/// The number of the format that record writes.
inline constexpr int recordingVersion = 2;

/// Looks at a booted watch; starts nothing and changes nothing there. Throws std::runtime_error.
RecordedState readState(const DeviceSession& session);

/// The state as the first line of a recording.
TraceEvent headOf(const RecordedState& state);

} // namespace deskwatch

#endif
