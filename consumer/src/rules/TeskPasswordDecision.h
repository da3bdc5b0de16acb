#ifndef TESK_PASSWORD_DECISION_H
#define TESK_PASSWORD_DECISION_H

#include "rules/TeskPolicyData.h"

/// What a device password must be: what the device enforces now, or what a policy wants.
struct TeskPasswordRules {
    int quality = 0;           ///< 0 none, 32 numeric, 128 alphanumeric; 1 more when simple passwords are allowed
    int minLength = 0;         ///< characters
    int complexCharacters = 0; ///< the least number of them
};

/// Why the wearer must set a stronger lock.
enum class TeskPasswordVerdict {
    Satisfied,
    QualityTooWeak,
    SimplePasswordAllowed,
    TooShort,
    TooFewComplexCharacters,
    NoLock,
    PinInsteadOfPassword
};

/// Decides whether a device's lock satisfies a policy. Knows numbers only; touches nothing.
namespace TeskPasswordDecision {

/// The quality without its low bits, among them the one that allows simple passwords.
int typeOf(int quality);

/// The quality that stands for one that the device policy manager no longer knows; any other as it is.
int migrated(int quality);

/// The quality that a policy wants; 0 when it wants no password.
int requiredQuality(const TeskPolicyData& policy);

/// What a policy wants where `countryMinLength` is the least length; nothing at all when it wants no password.
TeskPasswordRules required(const TeskPolicyData& policy, int countryMinLength);

/// The number of complex characters that a policy asks for, whether or not it wants a password.
int complexCharacters(const TeskPolicyData& policy);

/// Compares what the device enforces with what the policy wants; simple passwords by the policy's own flag.
TeskPasswordVerdict compareRules(const TeskPasswordRules& current, const TeskPasswordRules& required,
                                 bool simplePasswordAllowed);

/// Compares the lock that the wearer has set (0 none, 1 PIN) with the quality that the policy wants.
TeskPasswordVerdict compareLock(int requiredQuality, int lockType);

} // namespace TeskPasswordDecision

#endif
