#ifndef DESKWATCH_PLATFORM_FAULTS_H
#define DESKWATCH_PLATFORM_FAULTS_H

#include <string>
#include <vector>

#include "device/device.h"

namespace deskwatch {

/// That a function of the platform fails when the service calls it.
struct PlatformFault {
    std::string function;
    /// What it answers. A function that answers a pointer answers null.
    int code = 0;
    /// The call that fails, counted from now on, or from the start of a service that starts later; 0 is every call.
    int nth = 0;
};

// Each throws std::runtime_error when the watch is not booted. A boot clears all faults.

/// Has a function fail. Returns when the service, if it runs, knows of it. Throws std::runtime_error when the platform
/// has no such function.
void setFault(const Device& device, const PlatformFault& fault);

/// Has no function fail any more.
void clearFaults(const Device& device);

/// The functions that fail, by name.
std::vector<PlatformFault> readFaults(const Device& device);

} // namespace deskwatch

#endif
