#ifndef DESKWATCH_STATUS_FOLLOWER_H
#define DESKWATCH_STATUS_FOLLOWER_H

#include <functional>

#include "status/device_status.h"

namespace deskwatch {

/// Shows the status of a watch now and again after each change, until the process is stopped or the watch is switched
/// off: it reacts to changed settings, applications that start and end, launch requests, and written files. Changes
/// that come together are shown together. While the service counts down to its end, each second is a change. Throws
/// std::runtime_error.
[[noreturn]] void followStatus(const DeviceSession& session,
                               const std::function<void(const DeviceStatus& status)>& show);

} // namespace deskwatch

#endif
