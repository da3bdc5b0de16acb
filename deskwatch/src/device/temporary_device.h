#ifndef DESKWATCH_TEMPORARY_DEVICE_H
#define DESKWATCH_TEMPORARY_DEVICE_H

#include <csignal>

#include "device/device.h"

namespace deskwatch {

/// A watch in a folder of its own among the temporary files, on no list, that lasts as long as the process.
///
/// The process goes on as a child of itself. The parent waits for the end of the child, kills what runs on the watch,
/// removes the folder and ends as the child did: whether it returned, threw, crashed, or was told to end by SIGINT,
/// SIGTERM or SIGHUP. Make one of them, and before the process has threads, open connections or unwritten output.
class TemporaryDevice {
public:
    /// Throws std::runtime_error when there is no place for the folder, which does not exist yet.
    TemporaryDevice();
    TemporaryDevice(const TemporaryDevice&) = delete;
    TemporaryDevice& operator=(const TemporaryDevice&) = delete;

    const Device* operator->() const { return &device_; }
    const Device& operator*() const { return device_; }

private:
    sigset_t earlier_; // those that end the process are held back before there is a folder
    Device device_;
};

} // namespace deskwatch

#endif
