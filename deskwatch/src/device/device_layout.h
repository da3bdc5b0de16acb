#ifndef DESKWATCH_DEVICE_LAYOUT_H
#define DESKWATCH_DEVICE_LAYOUT_H

#include <filesystem>
#include <string>

#include "device/environment.h"

namespace deskwatch {

/// Where things are in the folder of a device, and the environment of its processes.
class DeviceLayout {
public:
    /// `folder` becomes absolute. Throws std::runtime_error when the device's bus could not be configured there,
    /// because the path is not UTF-8 or holds control characters. Touches nothing.
    explicit DeviceLayout(const std::filesystem::path& folder);

    const std::filesystem::path& folder() const { return folder_; }
    /// In the folder, unless that path is too long for a socket: then in a folder of the user's in /tmp.
    std::filesystem::path socket() const;
    std::filesystem::path busConfiguration() const { return folder_ / "bus.conf"; }
    std::filesystem::path busRecord() const { return folder_ / "bus.process"; }
    std::filesystem::path bootLock() const { return folder_ / "boot.lock"; }
    /// There from the end of a boot on until the watch is switched off.
    std::filesystem::path bootedMark() const { return folder_ / "booted"; }
    std::filesystem::path services() const { return folder_ / "services"; }
    std::filesystem::path config() const { return folder_ / "config"; }
    std::filesystem::path settingsProfile() const { return config() / "dconf-profile"; }
    std::filesystem::path settingsDatabase() const { return config() / "dconf" / "user"; }
    std::filesystem::path run() const { return folder_ / "run"; }
    /// Has a byte for each time that the internal storage was wiped since the boot.
    std::filesystem::path internalWipes() const { return run() / "wipes-internal"; }
    std::filesystem::path passwd() const { return folder_ / "passwd"; }
    std::filesystem::path group() const { return folder_ / "group"; }
    std::filesystem::path log() const { return folder_ / "log"; }
    /// Where in the log the last boot begins, in bytes.
    std::filesystem::path logOfBoot() const { return folder_ / "log.boot"; }
    std::filesystem::path internalStorage() const { return folder_ / "storage" / "internal"; }
    std::filesystem::path externalStorage() const { return folder_ / "storage" / "external"; }
    std::filesystem::path applicationData(const std::string& id) const { return folder_ / "apps" / id / "data"; }

    /// The address of the device's bus.
    std::string busAddress() const;

    /// The variables that every process of the device has in common: its bus, its folders, and what a watch takes over
    /// from the caller.
    Environment commonEnvironment() const;

    /// The variables that make a process this application.
    Environment applicationEnvironment(const std::string& id) const;

    /// Makes the folders. Throws std::runtime_error when the folder already holds something other than a device, or is
    /// inside another device's, so that a wipe of a device never meets other files.
    void makeFolders() const;

private:
    std::filesystem::path folder_;
};

} // namespace deskwatch

#endif
