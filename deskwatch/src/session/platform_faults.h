#ifndef DESKWATCH_PLATFORM_FAULTS_H
#define DESKWATCH_PLATFORM_FAULTS_H

#include <string>
#include <vector>

#include "session/device_session.h"

namespace deskwatch {

/// A function of the platform that fails when the service calls it.
struct PlatformFault {
    std::string function;
    /// What it returns. A function that returns a pointer returns null.
    int code = 0;
    /// The call that fails, counted from now on, or from the start of a service that starts later; 0 is every call.
    int nth = 0;
};

/// The functions of the platform that can fail so, by name.
std::vector<std::string> platformFunctions();

// The faults of the watch that this process is on (see DeviceSession). A boot clears them.

/// Makes a function fail. Returns when the service, if it runs, knows of it. Throws std::runtime_error when the
/// platform has no such function.
void setFault(const DeviceSession& session, const PlatformFault& fault);

/// Removes all faults.
void clearFaults(const DeviceSession& session);

/// The functions that fail, by name.
std::vector<PlatformFault> readFaults();

} // namespace deskwatch

#endif
