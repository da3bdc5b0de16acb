#ifndef HARNESS_CHECKS_H
#define HARNESS_CHECKS_H

#include <string>

#include "watch.h"

// What must hold on a watch whose service runs. Each check returns what does not; nothing when everything does.
namespace harness {

/// The account of flawAfterGoodRequest().
inline constexpr int goodAccountId = 77;

/// The device's rules are those of the stored accounts.
std::string flawOfEnforcement(const Watch& watch);

/// A good policy for a new account, on a watch that still has everything to do for it, is stored, enforced, published
/// and told to the wearer.
std::string flawAfterGoodRequest(Watch& watch);

/// Has the mail application remove all stored accounts.
void deleteEveryAccount(Watch& watch);

} // namespace harness

#endif
