#include <algorithm>
#include <functional>
#include <vector>

#include "combinations.h"
#include "rules/TeskPasswordDecision.h"

namespace {

using Verdict = TeskPasswordVerdict;

/// A device and the policy that it is to satisfy.
struct Combination {
    TeskPasswordRules device;
    int lockType = 0;
    int countryMinLength = 4;
    TeskPolicyData policy;

    std::string text() const {
        return "quality " + std::to_string(device.quality) + ", length " + std::to_string(device.minLength) +
               ", complex " + std::to_string(device.complexCharacters) + ", lock " + std::to_string(lockType) +
               "; wanted: enabled " + std::to_string(policy.devicePasswordEnabled) + ", simple " +
               std::to_string(policy.allowSimplePassword) + ", alphanumeric " +
               std::to_string(policy.alphanumericDevicePasswordRequired) + ", length " +
               std::to_string(policy.minDevicePasswordLength) + ", complex " +
               std::to_string(policy.minDevicePasswordComplexCharacters);
    }
};

// What a device has and what a policy wants, in words of this test's own.

/// The largest multiple of 16 that is not above the quality.
int typeOf(int quality) {
    const int rest = ((quality % 16) + 16) % 16;
    return quality - rest;
}

/// A quality of the old style stands for a simple PIN.
int qualityNow(const Combination& combination) {
    return typeOf(combination.device.quality) == 16 ? 33 : combination.device.quality;
}

bool wantsPassword(const Combination& combination) {
    return combination.policy.devicePasswordEnabled != 0;
}

bool wantsAlphanumeric(const Combination& combination) {
    return wantsPassword(combination) && combination.policy.alphanumericDevicePasswordRequired != 0;
}

bool forbidsSimple(const Combination& combination) {
    return combination.policy.allowSimplePassword == 0;
}

int wantedType(const Combination& combination) {
    return wantsAlphanumeric(combination) ? 128 : wantsPassword(combination) ? 32 : 0;
}

int wantedLength(const Combination& combination) {
    const auto lengths = {combination.countryMinLength, int{combination.policy.minDevicePasswordLength}};
    return wantsPassword(combination) ? *std::max_element(lengths.begin(), lengths.end()) : 0;
}

/// Each reason to send the wearer to the settings, and when it holds.
struct Reason {
    Verdict verdict;
    std::function<bool(const Combination&)> holds;
};

/// The first of them is the one that is told.
const std::vector<Reason>& reasons() {
    static const std::vector<Reason> all{
        {Verdict::QualityTooWeak,
         [](const Combination& combination) { return typeOf(qualityNow(combination)) < wantedType(combination); }},
        {Verdict::SimplePasswordAllowed,
         [](const Combination& combination) {
             return typeOf(qualityNow(combination)) == wantedType(combination) && qualityNow(combination) % 2 != 0 &&
                    forbidsSimple(combination);
         }},
        {Verdict::TooShort,
         [](const Combination& combination) { return combination.device.minLength < wantedLength(combination); }},
        {Verdict::TooFewComplexCharacters,
         [](const Combination& combination) {
             return wantsAlphanumeric(combination) && typeOf(qualityNow(combination)) == 128 &&
                    combination.device.complexCharacters < combination.policy.minDevicePasswordComplexCharacters;
         }},
        {Verdict::NoLock,
         [](const Combination& combination) { return wantsPassword(combination) && combination.lockType == 0; }},
        {Verdict::PinInsteadOfPassword,
         [](const Combination& combination) { return wantsAlphanumeric(combination) && combination.lockType == 1; }},
    };
    return all;
}

Verdict expected(const Combination& combination) {
    const auto first = std::find_if(reasons().begin(), reasons().end(),
                                    [&](const Reason& reason) { return reason.holds(combination); });
    return first == reasons().end() ? Verdict::Satisfied : first->verdict;
}

/// What the service makes of it: first the rules, then the lock.
Verdict decided(const Combination& combination) {
    auto current = combination.device;
    current.quality = TeskPasswordDecision::migrated(current.quality);
    const auto required = TeskPasswordDecision::required(combination.policy, combination.countryMinLength);
    const auto verdict =
        TeskPasswordDecision::compareRules(current, required, combination.policy.allowSimplePassword != 0);
    return verdict != Verdict::Satisfied ? verdict
                                         : TeskPasswordDecision::compareLock(required.quality, combination.lockType);
}

using Visit = std::function<void(Combination&)>;

/// Goes on with each of the values in a place of the combination.
Visit each(const std::vector<int>& values, const std::function<int&(Combination&)>& place, const Visit& next) {
    return [=](Combination& combination) {
        for (const int value : values) {
            place(combination) = value;
            next(combination);
        }
    };
}

/// The values of each place.
struct Ranges {
    std::vector<int> quality, length, complex, lock, enabled, simple, alphanumeric, wantedLength, wantedComplex;
};

void tryAll(const Ranges& ranges, Combinations& combinations) {
    Visit visit = [&](Combination& combination) {
        combinations.add(decided(combination) == expected(combination), [&] {
            return combination.text() + ": " + std::to_string(static_cast<int>(decided(combination))) + " instead of " +
                   std::to_string(static_cast<int>(expected(combination)));
        });
    };
    visit = each(
        ranges.quality, [](Combination& combination) -> int& { return combination.device.quality; }, visit);
    visit = each(
        ranges.length, [](Combination& combination) -> int& { return combination.device.minLength; }, visit);
    visit = each(
        ranges.complex, [](Combination& combination) -> int& { return combination.device.complexCharacters; }, visit);
    visit = each(
        ranges.lock, [](Combination& combination) -> int& { return combination.lockType; }, visit);
    visit = each(
        {4, 6}, [](Combination& combination) -> int& { return combination.countryMinLength; }, visit);
    visit = each(
        ranges.enabled, [](Combination& combination) -> int& { return combination.policy.devicePasswordEnabled; },
        visit);
    visit = each(
        ranges.simple, [](Combination& combination) -> int& { return combination.policy.allowSimplePassword; }, visit);
    visit = each(
        ranges.alphanumeric,
        [](Combination& combination) -> int& { return combination.policy.alphanumericDevicePasswordRequired; }, visit);
    visit = each(
        ranges.wantedLength,
        [](Combination& combination) -> int& { return combination.policy.minDevicePasswordLength; }, visit);
    visit = each(
        ranges.wantedComplex,
        [](Combination& combination) -> int& { return combination.policy.minDevicePasswordComplexCharacters; }, visit);
    Combination combination;
    visit(combination);
}

TEST(DecisionCombinations, TheFirstReasonThatHoldsIsTold) {
    Ranges ranges;
    ranges.quality = {0, 1, 15, 16, 17, 31, 32, 33, 48, 64, 65, 112, 128, 129, 144};
    ranges.length = {0, 3, 4, 5, 6, 7};
    ranges.complex = {0, 1, 2};
    ranges.lock = {0, 1, 2};
    ranges.enabled = {0, 1};
    ranges.simple = {0, 1};
    ranges.alphanumeric = {0, 1};
    ranges.wantedLength = {0, 4, 5, 6, 7};
    ranges.wantedComplex = {0, 1, 2};
    Combinations combinations(190000);
    tryAll(ranges, combinations);
}

TEST(DecisionCombinations, TheSameHoldsForValuesThatNobodyShouldSend) {
    Ranges ranges;
    ranges.quality = {smallest, -1, 127, largest};
    ranges.length = {smallest, -1, largest};
    ranges.complex = {smallest, -1, largest};
    ranges.lock = {-1, 1, largest};
    ranges.enabled = {-1, 0, 2};
    ranges.simple = {-1, 0, 2};
    ranges.alphanumeric = {-1, 0, 2};
    ranges.wantedLength = {smallest, -1, largest};
    ranges.wantedComplex = {smallest, -1, largest};
    Combinations combinations(50000);
    tryAll(ranges, combinations);
}

/// A policy that is harder to satisfy in one respect.
std::vector<Combination> harder(const Combination& combination) {
    std::vector<Combination> all(5, combination);
    all[0].policy.devicePasswordEnabled = 1;
    all[1].policy.allowSimplePassword = 0;
    all[2].policy.alphanumericDevicePasswordRequired = 1;
    all[3].policy.minDevicePasswordLength += 1;
    all[4].policy.minDevicePasswordComplexCharacters += 1;
    return all;
}

TEST(DecisionCombinations, AHarderPolicyIsNeverSatisfiedByWhatAnEasierOneWasNot) {
    Combinations combinations(30000);
    Visit visit = [&](Combination& combination) {
        for (const auto& hard : harder(combination)) {
            combinations.add(decided(combination) == Verdict::Satisfied || decided(hard) != Verdict::Satisfied,
                             [&] { return combination.text() + " became easier"; });
        }
    };
    visit = each(
        {0, 1, 16, 32, 33, 64, 128, 129}, [](Combination& combination) -> int& { return combination.device.quality; },
        visit);
    visit = each(
        {0, 4, 5}, [](Combination& combination) -> int& { return combination.device.minLength; }, visit);
    visit = each(
        {0, 1}, [](Combination& combination) -> int& { return combination.device.complexCharacters; }, visit);
    visit = each(
        {0, 1, 2}, [](Combination& combination) -> int& { return combination.lockType; }, visit);
    visit = each(
        {0, 1}, [](Combination& combination) -> int& { return combination.policy.devicePasswordEnabled; }, visit);
    visit = each(
        {0, 1}, [](Combination& combination) -> int& { return combination.policy.allowSimplePassword; }, visit);
    visit = each(
        {0, 1}, [](Combination& combination) -> int& { return combination.policy.alphanumericDevicePasswordRequired; },
        visit);
    visit = each(
        {0, 4, 5}, [](Combination& combination) -> int& { return combination.policy.minDevicePasswordLength; }, visit);
    visit = each(
        {0, 1}, [](Combination& combination) -> int& { return combination.policy.minDevicePasswordComplexCharacters; },
        visit);
    Combination combination;
    visit(combination);
}

} // namespace
