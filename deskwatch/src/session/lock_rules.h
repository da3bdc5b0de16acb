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
    /// Characters; 0 for no minimum.
    int minimumLength = 0;
};

/// A lock that the wearer would set; the length, in characters, has no meaning when there is no lock.
struct LockChoice {
    Lock lock = Lock::None;
    int length = 0;
};

/// The length that the lock settings propose: the shortest that is allowed, 4 when nothing is required.
int proposedLength(const LockDemand& demand);

/// Why the lock settings refuse a lock, with what is required instead; none when they accept it.
std::optional<std::string> refusalOf(const LockChoice& choice, const LockDemand& demand);

} // namespace deskwatch

#endif
