#include <gtest/gtest.h>

#include <vector>

#include "rules/TeskPolicySettings.h"

namespace {

constexpr int countryMinLength = 4;

std::vector<int> numbersOf(const TeskPolicySettings& settings) {
    return {settings.quality,    settings.minLength,  settings.failedAttempts,    settings.complexCharacters,
            settings.inactivity, settings.expiration, settings.history,           settings.wifi,
            settings.messaging,  settings.popImap,    settings.encryption ? 1 : 0};
}

TEST(TeskPolicySettingsTest, NewSettingsAskForNothing) {
    EXPECT_EQ(numbersOf(TeskPolicySettings()), std::vector<int>(11, 0));
}

TEST(TeskPolicySettingsTest, EachSettingIsThatOfItsOwnRule) {
    TeskPolicyData policy;
    policy.devicePasswordEnabled = 1;
    policy.alphanumericDevicePasswordRequired = 1;
    policy.allowSimplePassword = 0;
    policy.minDevicePasswordLength = 8;
    policy.maxDevicePasswordFailedAttempts = 5;
    policy.minDevicePasswordComplexCharacters = 3;
    policy.maxInactivityTimeDeviceLock = 60;
    policy.devicePasswordExpiration = 30;
    policy.devicePasswordHistory = 2;
    policy.allowWifi = 12;
    policy.allowTextMessaging = 13;
    policy.allowPopimapEmail = 14;
    policy.requireDeviceEncryption = 1;

    const auto settings = TeskPolicySettings::of(policy, countryMinLength);

    EXPECT_EQ(settings.quality, 128);
    EXPECT_EQ(settings.minLength, 8);
    EXPECT_EQ(settings.failedAttempts, 5);
    EXPECT_EQ(settings.complexCharacters, 3);
    EXPECT_EQ(settings.inactivity, 60);
    EXPECT_EQ(settings.expiration, 30);
    EXPECT_EQ(settings.history, 2);
    EXPECT_EQ(settings.wifi, 12);
    EXPECT_EQ(settings.messaging, 13);
    EXPECT_EQ(settings.popImap, 14);
    EXPECT_TRUE(settings.encryption);
}

TEST(TeskPolicySettingsTest, PolicyWithoutPasswordStillSetsWhatIsNoPartOfIt) {
    TeskPolicyData policy;
    policy.alphanumericDevicePasswordRequired = 1;
    policy.minDevicePasswordLength = 8;
    policy.minDevicePasswordComplexCharacters = 3;
    policy.maxInactivityTimeDeviceLock = 900;

    const auto settings = TeskPolicySettings::of(policy, countryMinLength);

    EXPECT_EQ(settings.quality, 0);
    EXPECT_EQ(settings.minLength, 0);
    EXPECT_EQ(settings.failedAttempts, 10) << "never without a limit";
    EXPECT_EQ(settings.complexCharacters, 3);
    EXPECT_EQ(settings.inactivity, 900);
    EXPECT_FALSE(settings.encryption);
}

TEST(TeskPolicySettingsTest, PasswordIsAtLeastAsLongAsTheCountryAsksFor) {
    TeskPolicyData policy;
    policy.devicePasswordEnabled = 1;
    EXPECT_EQ(TeskPolicySettings::of(policy, 6).minLength, 6);
}

TEST(TeskPolicySettingsTest, KoreaAndARegionThatWasNeverSetHaveTheLongerMinimum) {
    for (const auto* country : {"KR", "K", ""}) {
        EXPECT_EQ(TeskPolicySettings::countryMinLength(country), 6) << country;
    }
    for (const auto* country : {"FR", "kr", "KO", "KRX"}) {
        EXPECT_EQ(TeskPolicySettings::countryMinLength(country), 4) << country;
    }
    EXPECT_EQ(TeskPolicySettings::countryMinLength(nullptr), 4);
}

TEST(TeskPolicySettingsTest, EncryptedDeviceIsNotAskedAgain) {
    TeskPolicySettings settings;
    EXPECT_TRUE(settings.needsEncryptionWrite(true));
    settings.encryption = true;
    EXPECT_FALSE(settings.needsEncryptionWrite(true));
    EXPECT_TRUE(settings.needsEncryptionWrite(false));
}

TEST(TeskPolicySettingsTest, OnlyTheWordItselfMeansUnencrypted) {
    EXPECT_FALSE(TeskPolicySettings::isEncrypted("unencrypted"));
    for (const auto* state : {"encrypted", "unencrypted ", "", "Unencrypted", "encrypting"}) {
        EXPECT_TRUE(TeskPolicySettings::isEncrypted(state)) << state;
    }
    EXPECT_TRUE(TeskPolicySettings::isEncrypted(nullptr));
}

} // namespace
