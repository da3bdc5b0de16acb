#include <algorithm>
#include <functional>
#include <vector>

#include "TeskPasswordDecision.h"
#include "worlds.h"

namespace {

using Verdict = TeskPasswordVerdict;

/// A device and the policy that it is to satisfy.
struct World {
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
int qualityNow(const World& world) {
    return typeOf(world.device.quality) == 16 ? 33 : world.device.quality;
}

bool wantsPassword(const World& world) {
    return world.policy.devicePasswordEnabled != 0;
}

bool wantsAlphanumeric(const World& world) {
    return wantsPassword(world) && world.policy.alphanumericDevicePasswordRequired != 0;
}

bool forbidsSimple(const World& world) {
    return world.policy.allowSimplePassword == 0;
}

int wantedType(const World& world) {
    return wantsAlphanumeric(world) ? 128 : wantsPassword(world) ? 32 : 0;
}

int wantedLength(const World& world) {
    const auto lengths = {world.countryMinLength, int{world.policy.minDevicePasswordLength}};
    return wantsPassword(world) ? *std::max_element(lengths.begin(), lengths.end()) : 0;
}

/// Each reason to send the wearer to the settings, and when it holds.
struct Reason {
    Verdict verdict;
    std::function<bool(const World&)> holds;
};

/// The first of them is the one that is told.
const std::vector<Reason>& reasons() {
    static const std::vector<Reason> all{
        {Verdict::QualityTooWeak, [](const World& world) { return typeOf(qualityNow(world)) < wantedType(world); }},
        {Verdict::SimplePasswordAllowed,
         [](const World& world) {
             return typeOf(qualityNow(world)) == wantedType(world) && qualityNow(world) % 2 != 0 &&
                    forbidsSimple(world);
         }},
        {Verdict::TooShort, [](const World& world) { return world.device.minLength < wantedLength(world); }},
        {Verdict::TooFewComplexCharacters,
         [](const World& world) {
             return wantsAlphanumeric(world) && typeOf(qualityNow(world)) == 128 &&
                    world.device.complexCharacters < world.policy.minDevicePasswordComplexCharacters;
         }},
        {Verdict::NoLock, [](const World& world) { return wantsPassword(world) && world.lockType == 0; }},
        {Verdict::PinInsteadOfPassword,
         [](const World& world) { return wantsAlphanumeric(world) && world.lockType == 1; }},
    };
    return all;
}

Verdict expected(const World& world) {
    const auto first =
        std::find_if(reasons().begin(), reasons().end(), [&](const Reason& reason) { return reason.holds(world); });
    return first == reasons().end() ? Verdict::Satisfied : first->verdict;
}

/// What the service makes of it: first the rules, then the lock.
Verdict decided(const World& world) {
    auto current = world.device;
    current.quality = TeskPasswordDecision::migrated(current.quality);
    const auto required = TeskPasswordDecision::required(world.policy, world.countryMinLength);
    const auto verdict = TeskPasswordDecision::compareRules(current, required, world.policy.allowSimplePassword != 0);
    return verdict != Verdict::Satisfied ? verdict
                                         : TeskPasswordDecision::compareLock(required.quality, world.lockType);
}

using Visit = std::function<void(World&)>;

/// Goes on with each of the values in a place of the world.
Visit each(const std::vector<int>& values, const std::function<int&(World&)>& place, const Visit& next) {
    return [=](World& world) {
        for (const int value : values) {
            place(world) = value;
            next(world);
        }
    };
}

/// The values of each place.
struct Ranges {
    std::vector<int> quality, length, complex, lock, enabled, simple, alphanumeric, wantedLength, wantedComplex;
};

void tryAll(const Ranges& ranges, Worlds& worlds) {
    Visit visit = [&](World& world) {
        worlds.add(decided(world) == expected(world), [&] {
            return world.text() + ": " + std::to_string(static_cast<int>(decided(world))) + " instead of " +
                   std::to_string(static_cast<int>(expected(world)));
        });
    };
    visit = each(
        ranges.quality, [](World& world) -> int& { return world.device.quality; }, visit);
    visit = each(
        ranges.length, [](World& world) -> int& { return world.device.minLength; }, visit);
    visit = each(
        ranges.complex, [](World& world) -> int& { return world.device.complexCharacters; }, visit);
    visit = each(
        ranges.lock, [](World& world) -> int& { return world.lockType; }, visit);
    visit = each(
        {4, 6}, [](World& world) -> int& { return world.countryMinLength; }, visit);
    visit = each(
        ranges.enabled, [](World& world) -> int& { return world.policy.devicePasswordEnabled; }, visit);
    visit = each(
        ranges.simple, [](World& world) -> int& { return world.policy.allowSimplePassword; }, visit);
    visit = each(
        ranges.alphanumeric, [](World& world) -> int& { return world.policy.alphanumericDevicePasswordRequired; },
        visit);
    visit = each(
        ranges.wantedLength, [](World& world) -> int& { return world.policy.minDevicePasswordLength; }, visit);
    visit = each(
        ranges.wantedComplex, [](World& world) -> int& { return world.policy.minDevicePasswordComplexCharacters; },
        visit);
    World world;
    visit(world);
}

TEST(DecisionWorlds, TheFirstReasonThatHoldsIsTold) {
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
    Worlds worlds(190000);
    tryAll(ranges, worlds);
}

TEST(DecisionWorlds, TheSameHoldsForValuesThatNobodyShouldSend) {
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
    Worlds worlds(50000);
    tryAll(ranges, worlds);
}

/// A policy that is harder to satisfy in one respect.
std::vector<World> harder(const World& world) {
    std::vector<World> all(5, world);
    all[0].policy.devicePasswordEnabled = 1;
    all[1].policy.allowSimplePassword = 0;
    all[2].policy.alphanumericDevicePasswordRequired = 1;
    all[3].policy.minDevicePasswordLength += 1;
    all[4].policy.minDevicePasswordComplexCharacters += 1;
    return all;
}

TEST(DecisionWorlds, AHarderPolicyIsNeverSatisfiedByWhatAnEasierOneWasNot) {
    Worlds worlds(30000);
    Visit visit = [&](World& world) {
        for (const auto& hard : harder(world)) {
            worlds.add(decided(world) == Verdict::Satisfied || decided(hard) != Verdict::Satisfied,
                       [&] { return world.text() + " became easier"; });
        }
    };
    visit = each(
        {0, 1, 16, 32, 33, 64, 128, 129}, [](World& world) -> int& { return world.device.quality; }, visit);
    visit = each(
        {0, 4, 5}, [](World& world) -> int& { return world.device.minLength; }, visit);
    visit = each(
        {0, 1}, [](World& world) -> int& { return world.device.complexCharacters; }, visit);
    visit = each(
        {0, 1, 2}, [](World& world) -> int& { return world.lockType; }, visit);
    visit = each(
        {0, 1}, [](World& world) -> int& { return world.policy.devicePasswordEnabled; }, visit);
    visit = each(
        {0, 1}, [](World& world) -> int& { return world.policy.allowSimplePassword; }, visit);
    visit = each(
        {0, 1}, [](World& world) -> int& { return world.policy.alphanumericDevicePasswordRequired; }, visit);
    visit = each(
        {0, 4, 5}, [](World& world) -> int& { return world.policy.minDevicePasswordLength; }, visit);
    visit = each(
        {0, 1}, [](World& world) -> int& { return world.policy.minDevicePasswordComplexCharacters; }, visit);
    World world;
    visit(world);
}

} // namespace
