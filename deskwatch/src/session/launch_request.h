#ifndef DESKWATCH_LAUNCH_REQUEST_H
#define DESKWATCH_LAUNCH_REQUEST_H

#include <string>
#include <utility>
#include <vector>

#include "session/device_session.h"

namespace deskwatch {

/// Key and value of each entry of a launch request.
using ExtraData = std::vector<std::pair<std::string, std::string>>;

/// Sends a launch request, which starts the application when it does not run. Returns at once; settle() of the session
/// waits until the application has taken it. Throws std::runtime_error with the platform's code when it is refused.
void sendLaunchRequest(const std::string& applicationId, const ExtraData& extraData);

/// Launches an application of the watch as its home screen does, and returns when it has taken the request.
/// Throws std::runtime_error when the watch is not booted, the application does not exist or does not come up.
void launchFromHome(const Device& device, const std::string& applicationId, const ExtraData& extraData);

} // namespace deskwatch

#endif
