#ifndef DESKWATCH_DEVICE_POLICY_H
#define DESKWATCH_DEVICE_POLICY_H

#include <dconf.h>

#include <vector>

#include "session/lock_rules.h"
#include "session/value.h"

namespace deskwatch {

/// What the device policy manager of the watch holds, by the platform's names and in the order in which a policy is
/// applied. A setting that cannot be read has no value.
std::vector<NamedValue> readDevicePolicy(DConfClient* store);

/// What the device policy manager demands of the screen's lock. Throws std::runtime_error when it does not tell.
LockDemand readLockDemand();

} // namespace deskwatch

#endif
