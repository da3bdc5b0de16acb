#ifndef DESKWATCH_SURROUNDINGS_H
#define DESKWATCH_SURROUNDINGS_H

#include <string>
#include <vector>

#include "device/bus_client.h"
#include "recording/bus_monitor.h"
#include "replay/recording.h"
#include "replay/stand_ins.h"

namespace deskwatch {

/// Everything around the service of a watch, as a recording tells it.
class Surroundings {
public:
    /// Plays the applications that the recording names. The watch has been resumed without any settings.
    Surroundings(const Device& device, const Recording& recording);

    /// Brings the watch into the state in which the recording began.
    void begin(const RecordedState& state);

    /// Does what the event says. False when it cannot be done, because the service has not asked for it.
    bool act(const TraceEvent& event);

    /// Returns when the service has handled everything, with what it did since the last time; its end is among that.
    std::vector<TraceEvent> effects();

private:
    void launchService(const std::string& caller, const TraceEvent& extraData) const;
    void send(const TraceEvent& event) const;
    void end(const std::string& how);
    void letTimePass() const;
    void setFault(const TraceEvent& event) const;
    void callDiagnosis(const TraceEvent& event) const;
    void writeSettings(const std::vector<std::pair<std::string, TraceEvent>>& settings) const;
    /// What comes next must not reach the service before the news of what was written.
    void letNewsArrive() const;
    void settle(const std::string& application) const;

    const Device& device_;
    BusClient bus_;
    BusMonitor monitor_;
    StandIns standIns_;
    BusTrace trace_;
    std::vector<TraceEvent> effects_;
};

} // namespace deskwatch

#endif
