#ifndef DESKWATCH_LOCK_RULES_H
#define DESKWATCH_LOCK_RULES_H

#include <optional>
#include <string>

#include "device/first_settings.h"

namespace deskwatch {

/// What the device policy manager demands of the screen's lock.
struct LockDemand {
    /// 0 none, 32 numeric, 128 alphanumeric; the lowest bits say more about the characters.
    int quality = 0;
    /// Characters; 0 when there is no minimum.
    int minimumLength = 0;
};

/// A lock that the wearer would set; the length, in characters, is of no meaning where there is no lock.
struct LockChoice {
    Lock lock = Lock::None;
    int length = 0;
};

/// The length that the lock settings propose: the shortest that is allowed, 4 where nothing is demanded.
int proposedLength(const LockDemand& demand);

/// Why the lock settings do not take a lock, with what is demanded instead; none when they take it.
std::optional<std::string> refusalOf(const LockChoice& choice, const LockDemand& demand);

} // namespace deskwatch

#endif
