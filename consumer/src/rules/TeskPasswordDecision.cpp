#include "rules/TeskPasswordDecision.h"

#include <algorithm>

namespace {

constexpr int numericQuality = 32;
constexpr int alphanumericQuality = 128;
constexpr int simpleAllowedBit = 1;
constexpr int typeMask = ~0xF;

constexpr int oldStyleType = 16;
constexpr int oldStyleSuccessor = numericQuality + simpleAllowedBit;

constexpr int needsSomeLock = 32;
constexpr int needsMoreThanPin = 64;
constexpr int noLock = 0;
constexpr int pinLock = 1;

} // namespace

int TeskPasswordDecision::typeOf(int quality) {
    return quality & typeMask;
}

int TeskPasswordDecision::migrated(int quality) {
    return typeOf(quality) == oldStyleType ? oldStyleSuccessor : quality;
}

int TeskPasswordDecision::requiredQuality(const TeskPolicyData& policy) {
    if (policy.devicePasswordEnabled == 0) {
        return 0;
    }
    const int type = policy.alphanumericDevicePasswordRequired != 0 ? alphanumericQuality : numericQuality;
    return policy.allowSimplePassword != 0 ? type + simpleAllowedBit : type;
}

TeskPasswordRules TeskPasswordDecision::required(const TeskPolicyData& policy, int countryMinLength) {
    if (policy.devicePasswordEnabled == 0) {
        return {};
    }
    TeskPasswordRules rules;
    rules.quality = requiredQuality(policy);
    rules.minLength = std::max<int>(countryMinLength, policy.minDevicePasswordLength);
    rules.complexCharacters = complexCharacters(policy);
    return rules;
}

int TeskPasswordDecision::complexCharacters(const TeskPolicyData& policy) {
    return policy.alphanumericDevicePasswordRequired != 0 ? policy.minDevicePasswordComplexCharacters : 0;
}

TeskPasswordVerdict TeskPasswordDecision::compareRules(const TeskPasswordRules& current,
                                                       const TeskPasswordRules& required, bool simplePasswordAllowed) {
    const int currentType = typeOf(current.quality);
    const int requiredType = typeOf(required.quality);
    if (currentType < requiredType) {
        return TeskPasswordVerdict::QualityTooWeak;
    }
    const bool currentlySimple = (current.quality & simpleAllowedBit) != 0;
    if (currentType == requiredType && currentlySimple && !simplePasswordAllowed) {
        return TeskPasswordVerdict::SimplePasswordAllowed;
    }
    if (current.minLength < required.minLength) {
        return TeskPasswordVerdict::TooShort;
    }
    const bool bothAlphanumeric = currentType == alphanumericQuality && requiredType == alphanumericQuality;
    if (bothAlphanumeric && required.complexCharacters > current.complexCharacters) {
        return TeskPasswordVerdict::TooFewComplexCharacters;
    }
    return TeskPasswordVerdict::Satisfied;
}

TeskPasswordVerdict TeskPasswordDecision::compareLock(int requiredQuality, int lockType) {
    if (requiredQuality >= needsSomeLock && lockType == noLock) {
        return TeskPasswordVerdict::NoLock;
    }
    if (requiredQuality >= needsMoreThanPin && lockType == pinLock) {
        return TeskPasswordVerdict::PinInsteadOfPassword;
    }
    return TeskPasswordVerdict::Satisfied;
}
