#ifndef DESKWATCH_OBSERVED_WATCH_H
#define DESKWATCH_OBSERVED_WATCH_H

#include <optional>

#include "forecast/device_copy.h"
#include "status/device_status.h"

namespace deskwatch {

/// A watch that is looked at and not touched. Of one that is switched off a copy is booted, since the settings are read
/// as an application of a watch. Make one of them (see TemporaryDevice).
class ObservedWatch {
public:
    /// Throws std::runtime_error when the folder is not one of a watch.
    explicit ObservedWatch(const Device& device);

    /// Where its files are.
    const DeviceLayout& files() const { return device_.layout(); }

    /// This process on the watch, or on its copy.
    const DeviceSession& session() const { return copy_ ? copy_->session() : *session_; }

    /// What it is now, or keeps.
    DeviceStatus status() const;

private:
    Device device_;
    std::optional<DeviceCopy> copy_;
    std::optional<DeviceSession> session_;
};

} // namespace deskwatch

#endif
