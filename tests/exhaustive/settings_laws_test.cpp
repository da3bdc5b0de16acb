#include <gtest/gtest.h>

#include <vector>

#include "rules/TeskPasswordDecision.h"
#include "rules/TeskPolicyMerge.h"
#include "rules/TeskPolicySettings.h"

namespace {

using Policy = TeskPolicyData;

std::vector<int> numbersOf(const TeskPolicySettings& settings) {
    return {settings.failedAttempts, settings.inactivity, settings.expiration, settings.history,
            settings.wifi,           settings.messaging,  settings.popImap,    settings.encryption ? 1 : 0};
}

TEST(SettingsLaws, EachFieldSetsItsOwnRuleAndNoOther) {
    // in the order of numbersOf(); no value is the one that a new record sets
    const std::vector<std::pair<std::int32_t Policy::*, int>> fields{{&Policy::maxDevicePasswordFailedAttempts, 3},
                                                                     {&Policy::maxInactivityTimeDeviceLock, 7},
                                                                     {&Policy::devicePasswordExpiration, 8},
                                                                     {&Policy::devicePasswordHistory, 9},
                                                                     {&Policy::allowWifi, 0},
                                                                     {&Policy::allowTextMessaging, 0},
                                                                     {&Policy::allowPopimapEmail, 0},
                                                                     {&Policy::requireDeviceEncryption, 1}};
    for (std::size_t index = 0; index < fields.size(); ++index) {
        const auto& [field, value] = fields[index];
        std::vector<int> expected{10, 0, 0, 0, 1, 1, 1, 0};
        expected[index] = value;
        Policy policy;
        policy.*field = value;
        EXPECT_EQ(numbersOf(TeskPolicySettings::of(policy, 4)), expected) << index;
    }
}

TEST(SettingsLaws, ValuesThatNobodyShouldSendCountAsFlagsDo) {
    Policy policy;
    policy.requireDeviceEncryption = -1;
    policy.allowSimplePassword = 2;

    EXPECT_TRUE(TeskPolicySettings::of(policy, 4).encryption);
    EXPECT_EQ(TeskPolicyMerge::passwordScore(policy), 0) << "simple passwords are allowed";
    EXPECT_EQ(TeskPasswordDecision::compareLock(128, -1), TeskPasswordVerdict::Satisfied) << "-1 is some lock";
}

} // namespace
