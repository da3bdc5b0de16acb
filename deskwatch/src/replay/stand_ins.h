#ifndef DESKWATCH_STAND_INS_H
#define DESKWATCH_STAND_INS_H

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "device/device.h"
#include "recording/bus_trace.h"

namespace deskwatch {

/// Applications beside the service, played by a thread of this process: they take every launch request and every
/// message, and answer a request when they are told to. Starting a process for each would take most of the time of a
/// replay.
class StandIns {
public:
    /// Throws std::runtime_error when the bus of the watch refuses one of them.
    StandIns(const Device& device, const std::set<std::string>& ids);
    ~StandIns();
    StandIns(const StandIns&) = delete;
    StandIns& operator=(const StandIns&) = delete;

    /// The application comes up, as it also does with the first launch request: the mail application opens its port.
    void start(const std::string& id);

    /// Answers the oldest launch request that waits at that application; without extra data the request is cancelled.
    /// False when none waits.
    bool answer(const std::string& id, const TraceEvent& extraData);

private:
    class Application;
    class Loop;

    Application* find(const std::string& id) const;

    std::unique_ptr<Loop> loop_;
    std::vector<std::unique_ptr<Application>> applications_;
};

} // namespace deskwatch

#endif
