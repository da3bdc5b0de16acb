#ifndef DESKWATCH_PLATFORM_EVENTS_H
#define DESKWATCH_PLATFORM_EVENTS_H

#include <app_common.h>

#include <optional>
#include <string>

#include "device/device.h"

namespace deskwatch {

/// Announces a system event to all applications of a booted watch. Returns when the service,
/// if it runs, has handled it. Throws std::runtime_error when the watch is not booted.
void announceEvent(const Device& device, app_event_type_e type);

/// Calls a method of the service's interface for diagnosis, which takes a number or nothing; starts the service when it
/// does not run. Returns the method's answer when the service has done what it asks for. Throws std::runtime_error with
/// the bus's reason, as for a method that does not exist.
int callDiagnosticMethod(const Device& device, const std::string& method, std::optional<int> value);

/// Ends the service suddenly, as a crash would. False when it did not run. Throws std::runtime_error when the watch is
/// not booted or the service does not end.
bool killService(const Device& device);

} // namespace deskwatch

#endif
