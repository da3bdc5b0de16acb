#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "rules/TeskPasswordDecision.h"
#include "rules/TeskPolicySettings.h"

namespace {

constexpr int countryMinLength = 4;

/// A device, and the lock that its wearer has set.
struct Device {
    TeskPasswordRules rules;
    int lockType = 0;
};

bool isSatisfied(const TeskPolicyData& policy, const Device& device) {
    auto rules = device.rules;
    rules.quality = TeskPasswordDecision::migrated(rules.quality);
    const auto required = TeskPasswordDecision::required(policy, countryMinLength);
    return TeskPasswordDecision::compareRules(rules, required, policy.allowSimplePassword != 0) ==
               TeskPasswordVerdict::Satisfied &&
           TeskPasswordDecision::compareLock(required.quality, device.lockType) == TeskPasswordVerdict::Satisfied;
}

std::vector<Device> devices() {
    std::vector<Device> all;
    Device device;
    for (const int quality : {0, 1, 16, 32, 33, 64, 128, 129}) {
        device.rules.quality = quality;
        for (const int length : {0, 4, 5}) {
            device.rules.minLength = length;
            for (const int complexCharacters : {0, 1}) {
                device.rules.complexCharacters = complexCharacters;
                for (const int lockType : {0, 1, 2}) {
                    device.lockType = lockType;
                    all.push_back(device);
                }
            }
        }
    }
    return all;
}

std::vector<TeskPolicyData> policies() {
    std::vector<TeskPolicyData> all;
    TeskPolicyData policy;
    for (const int flags : {0, 1, 2, 3, 4, 5, 6, 7}) {
        policy.devicePasswordEnabled = flags % 2;
        policy.allowSimplePassword = flags / 2 % 2;
        policy.alphanumericDevicePasswordRequired = flags / 4;
        for (const int length : {0, 4, 5}) {
            policy.minDevicePasswordLength = length;
            for (const int complexCharacters : {0, 1}) {
                policy.minDevicePasswordComplexCharacters = complexCharacters;
                all.push_back(policy);
            }
        }
    }
    return all;
}

/// Policies that are harder to satisfy, each in one respect.
std::vector<TeskPolicyData> harder(const TeskPolicyData& policy) {
    std::vector<TeskPolicyData> all(5, policy);
    all[0].devicePasswordEnabled = 1;
    all[1].allowSimplePassword = 0;
    all[2].alphanumericDevicePasswordRequired = 1;
    all[3].minDevicePasswordLength += 1;
    all[4].minDevicePasswordComplexCharacters += 1;
    return all;
}

/// Devices that enforce more, each in one respect.
std::vector<Device> stricter(const Device& device) {
    std::vector<Device> all(3, device);
    all[0].rules.minLength += 1;
    all[1].rules.complexCharacters += 1;
    all[2].lockType = 2;
    return all;
}

TEST(DecisionLaws, DeviceThatSatisfiesAPolicySatisfiesEveryEasierOne) {
    int broken = 0;
    for (const auto& policy : policies()) {
        for (const auto& hard : harder(policy)) {
            for (const auto& device : devices()) {
                broken += isSatisfied(hard, device) && !isSatisfied(policy, device) ? 1 : 0;
            }
        }
    }
    EXPECT_EQ(broken, 0);
}

TEST(DecisionLaws, DeviceThatEnforcesMoreStillSatisfiesThePolicy) {
    int broken = 0;
    for (const auto& policy : policies()) {
        for (const auto& device : devices()) {
            for (const auto& strict : stricter(device)) {
                broken += isSatisfied(policy, device) && !isSatisfied(policy, strict) ? 1 : 0;
            }
        }
    }
    EXPECT_EQ(broken, 0);
}

/// Every device satisfies a policy that its own rules and lock are made for.
TEST(DecisionLaws, DeviceThatIsSetAsRequiredSatisfiesThePolicy) {
    for (const auto& policy : policies()) {
        const Device device{TeskPasswordDecision::required(policy, countryMinLength), 2};
        EXPECT_TRUE(isSatisfied(policy, device)) << "quality " << device.rules.quality;
    }
}

TEST(CountryTexts, OnlyATextThatKrBeginsWithMakesPasswordsLonger) {
    const std::string letters = "KRkrGB\x01 ";
    std::vector<std::string> countries{""};
    std::vector<std::string> longer;
    for (std::size_t next = 0; next < countries.size(); ++next) {
        const std::string country = countries[next];
        if (TeskPolicySettings::countryMinLength(country.c_str()) != countryMinLength) {
            longer.push_back(country);
        }
        for (const char letter : letters) {
            if (country.size() < 3) {
                countries.push_back(country + letter);
            }
        }
    }
    EXPECT_EQ(longer, (std::vector<std::string>{"", "K", "KR"}));
}

} // namespace
