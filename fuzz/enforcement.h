#ifndef FUZZ_ENFORCEMENT_H
#define FUZZ_ENFORCEMENT_H

#include "fake_platform.h"

namespace fuzz {

/// Requires that the device's rules are those of the stored policies.
void requireStoredPoliciesEnforced(const fake::FakePlatform& platform);

} // namespace fuzz

#endif
