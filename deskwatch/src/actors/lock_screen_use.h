#ifndef DESKWATCH_LOCK_SCREEN_USE_H
#define DESKWATCH_LOCK_SCREEN_USE_H

#include <string>

#include "device/device.h"

namespace deskwatch {

// What happens to the lock screen of a booted watch. Each returns in words what the watch does. Each throws Refusal
// when the watch does not allow it, as without a lock, and std::runtime_error when the watch is not booted.

/// Enters a wrong password that often, or until the watch wipes its internal storage.
std::string enterWrongPassword(const Device& device, int times);

/// Enters the right password. Refused when it has expired.
std::string unlock(const Device& device);

/// Leaves the watch alone. A watch without a lock stays open.
std::string leaveAlone(const Device& device, int seconds);

/// Makes the password that old.
std::string agePassword(const Device& device, int days);

} // namespace deskwatch

#endif
