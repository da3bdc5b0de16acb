#ifndef DESKWATCH_DEVICE_FILES_H
#define DESKWATCH_DEVICE_FILES_H

#include <sys/types.h>

#include <string>
#include <vector>

#include "device/device_layout.h"

namespace deskwatch {

/// What the bus starts when an application that does not run is needed.
struct Application {
    std::string id;
    /// The program, an absolute path, and its arguments.
    std::vector<std::string> command;
};

/// Writes what the device's processes read: the bus configuration, the user database and the activation files, which
/// replace those of an earlier boot. Throws std::runtime_error when a file cannot be written, a program does not exist
/// or the machine has no settings service.
void writeDeviceFiles(const DeviceLayout& layout, const std::vector<Application>& applications);

/// The number of the user "owner" of a watch that this process boots.
uid_t numberOfOwner();

/// The applications that the last boot was given, read from the activation files. Throws std::runtime_error when one
/// cannot be read.
std::vector<Application> readApplications(const DeviceLayout& layout);

} // namespace deskwatch

#endif
