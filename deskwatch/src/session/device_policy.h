#ifndef DESKWATCH_DEVICE_POLICY_H
#define DESKWATCH_DEVICE_POLICY_H

#include <dconf.h>

#include "session/device_settings.h"
#include "session/lock_rules.h"

namespace deskwatch {

/// What the device policy manager of the watch holds. A setting that cannot be read has no value.
SettingValues readDevicePolicy(DConfClient* store);

/// What the device policy manager requires of the screen's lock. Throws std::runtime_error when it cannot be read.
LockDemand readLockDemand();

/// Wipes the internal storage of the watch, as the platform does it. Returns the platform's code, 0 for success.
int wipeInternalStorage();

} // namespace deskwatch

#endif
