#include "session/lock_rules.h"

#include <algorithm>

namespace deskwatch {
namespace {

constexpr int numeric = 32;
constexpr int alphanumeric = 128;

/// The lowest bits tell whether simple passwords are allowed, not what kind of lock it has to be.
constexpr int kindMask = ~0xF;

/// The lock settings never accept a shorter lock.
constexpr int shortest = 4;

std::string demanded(const LockDemand& demand) {
    const int quality = demand.quality & kindMask;
    const std::string kind = quality >= alphanumeric ? "an alphanumeric password"
                             : quality > numeric     ? "a password"
                                                     : "a PIN or password";
    return kind + " of at least " + std::to_string(proposedLength(demand)) + " characters is demanded";
}

} // namespace

int proposedLength(const LockDemand& demand) {
    return std::max(shortest, demand.minimumLength);
}

std::optional<std::string> refusalOf(const LockChoice& choice, const LockDemand& demand) {
    const int kind = demand.quality & kindMask;
    if (choice.lock == Lock::None) {
        return kind >= numeric ? std::optional("the lock cannot be removed: " + demanded(demand)) : std::nullopt;
    }
    // Two kinds lie between a PIN and an alphanumeric password; a PIN is neither of them.
    if (choice.lock == Lock::Pin && kind > numeric) {
        return "a PIN is not enough: " + demanded(demand);
    }
    if (choice.length < proposedLength(demand)) {
        return std::to_string(choice.length) + " characters are not enough: at least " +
               std::to_string(proposedLength(demand)) + " are demanded";
    }
    return std::nullopt;
}

} // namespace deskwatch
