#ifndef DESKWATCH_DEVICE_COPY_H
#define DESKWATCH_DEVICE_COPY_H

#include "device/temporary_device.h"
#include "session/device_session.h"

namespace deskwatch {

/// A second watch that is as a booted one is now: its stored accounts, settings, keys and faults, its programs, and a
/// service that runs if that one's does. Of the other it reads files and asks the bus daemon; nothing there starts,
/// waits or changes. No screen is open on it. It lasts as long as the process (see TemporaryDevice).
class DeviceCopy {
public:
    /// Throws std::runtime_error when the original is not booted, or the copy does not come up.
    explicit DeviceCopy(const Device& original);

    /// This process as the mail application of the copy.
    const DeviceSession& session() const { return session_; }

    bool isServiceRunning() const { return isServiceRunning_; }

private:
    void startService(const Device& original) const;

    TemporaryDevice copy_; // the first: before the process has connections
    bool isServiceRunning_;
    DeviceSession session_;
};

} // namespace deskwatch

#endif
