#include <gtest/gtest.h>

#include <vector>

#include "rules/TeskPolicySettings.h"

namespace {

constexpr int countryMinLength = 4;

TEST(TeskPolicySettingsTest, NewSettingsAskForNothing) {
    const TeskPolicySettings settings;
    const auto numbers = {settings.quality,    settings.minLength,  settings.failedAttempts, settings.complexCharacters,
                          settings.inactivity, settings.expiration, settings.history,        settings.wifi,
                          settings.messaging,  settings.popImap};

    EXPECT_EQ(std::vector<int>(numbers), std::vector<int>(numbers.size(), 0));
    EXPECT_FALSE(settings.encryption);
}

TEST(TeskPolicySettingsTest, NewPolicyLimitsTheAttemptsOnly) {
    const auto settings = TeskPolicySettings::of({}, countryMinLength);

    EXPECT_EQ(settings.quality, 0);
    EXPECT_EQ(settings.minLength, 0);
    EXPECT_EQ(settings.failedAttempts, 10);
    EXPECT_EQ(settings.wifi, 1);
    EXPECT_FALSE(settings.encryption);
}

TEST(TeskPolicySettingsTest, CharactersAreAskedForWithoutAPasswordToo) {
    TeskPolicyData policy;
    policy.alphanumericDevicePasswordRequired = 1;
    policy.minDevicePasswordComplexCharacters = 3;
    EXPECT_EQ(TeskPolicySettings::of(policy, countryMinLength).complexCharacters, 3);
    EXPECT_EQ(TeskPolicySettings::of(policy, countryMinLength).quality, 0);
}

TEST(TeskPolicySettingsTest, PasswordIsAsLongAsTheCountryAsksForAtLeast) {
    TeskPolicyData policy;
    policy.devicePasswordEnabled = 1;
    EXPECT_EQ(TeskPolicySettings::of(policy, 6).minLength, 6);
    policy.minDevicePasswordLength = 8;
    EXPECT_EQ(TeskPolicySettings::of(policy, 6).minLength, 8);
}

TEST(TeskPolicySettingsTest, KoreaAndARegionThatWasNeverSetHaveTheLongerMinimum) {
    EXPECT_EQ(TeskPolicySettings::countryMinLength("KR"), 6);
    EXPECT_EQ(TeskPolicySettings::countryMinLength(""), 6);
    EXPECT_EQ(TeskPolicySettings::countryMinLength("FR"), 4);
    EXPECT_EQ(TeskPolicySettings::countryMinLength(nullptr), 4);
}

TEST(TeskPolicySettingsTest, EncryptedDeviceIsNotAskedAgain) {
    TeskPolicyData policy;
    EXPECT_TRUE(TeskPolicySettings::of(policy, countryMinLength).needsEncryptionWrite(true));
    policy.requireDeviceEncryption = 1;
    EXPECT_FALSE(TeskPolicySettings::of(policy, countryMinLength).needsEncryptionWrite(true));
    EXPECT_TRUE(TeskPolicySettings::of(policy, countryMinLength).needsEncryptionWrite(false));
}

TEST(TeskPolicySettingsTest, OnlyAStateThatSaysSoIsUnencrypted) {
    EXPECT_FALSE(TeskPolicySettings::isEncrypted("unencrypted"));
    EXPECT_TRUE(TeskPolicySettings::isEncrypted("encrypted"));
    EXPECT_TRUE(TeskPolicySettings::isEncrypted(nullptr));
}

} // namespace
