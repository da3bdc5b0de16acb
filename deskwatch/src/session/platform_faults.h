#ifndef DESKWATCH_PLATFORM_FAULTS_H
#define DESKWATCH_PLATFORM_FAULTS_H

#include <string>
#include <vector>

#include "session/device_session.h"

namespace deskwatch {

/// That a function of the platform fails when the service calls it.
struct PlatformFault {
    std::string function;
    /// What it answers. A function that answers a pointer answers null.
    int code = 0;
    /// The call that fails, counted from now on, or from the start of a service that starts later; 0 is every call.
    int nth = 0;
};

// The faults of the watch that this process is on (see DeviceSession). A boot clears them.

/// Has a function fail. Returns when the service, if it runs, knows of it. Throws std::runtime_error when the platform
/// has no such function.
void setFault(const DeviceSession& session, const PlatformFault& fault);

/// Has no function fail any more.
void clearFaults(const DeviceSession& session);

/// The functions that fail, by name.
std::vector<PlatformFault> readFaults();

} // namespace deskwatch

#endif
