#ifndef DESKWATCH_DEVICE_COPY_H
#define DESKWATCH_DEVICE_COPY_H

#include "device/temporary_device.h"
#include "session/device_session.h"

namespace deskwatch {

/// A copy of a watch as it is now, booted or not: its stored accounts, settings, keys, faults and programs, and a
/// running service if its service runs. The original is read through its files and its bus daemon; nothing there
/// starts, waits or changes. No screen is open on the copy. It lasts as long as the process (see TemporaryDevice).
class DeviceCopy {
public:
    /// Throws std::runtime_error when the copy does not come up.
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
