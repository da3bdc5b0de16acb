#ifndef DESKWATCH_DEVICE_POLICY_H
#define DESKWATCH_DEVICE_POLICY_H

#include "value.h"

#include <dconf.h>

#include <vector>

namespace deskwatch {

/// What the device policy manager of the watch holds, by the platform's names and in the order in which a policy is
/// applied. A setting that cannot be read has no value.
std::vector<NamedValue> readDevicePolicy(DConfClient* store);

} // namespace deskwatch

#endif
