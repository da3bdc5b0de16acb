#include <array>
#include <string>

#include "combinations.h"
#include "field.h"
#include "rules/TeskPolicySettings.h"

namespace {

/// What a policy sets, as texts in the order of writing.
std::string textOf(const TeskPolicySettings& settings) {
    std::string text;
    for (const int value : {settings.quality, settings.minLength, settings.failedAttempts, settings.complexCharacters,
                            settings.inactivity, settings.expiration, settings.history, settings.wifi,
                            settings.messaging, settings.popImap, settings.encryption ? 1 : 0}) {
        text += std::to_string(value) + " ";
    }
    return text;
}

/// The quality by the password's demand, the alphanumeric one and the permission of simple ones: none, off or on.
constexpr std::array<std::array<std::array<int, 2>, 2>, 2> qualities{{{{{0, 0}, {0, 0}}}, {{{32, 33}, {128, 129}}}}};

std::string expected(const TeskPolicyData& policy, int countryMinLength) {
    const bool password = policy.devicePasswordEnabled != 0;
    const bool alphanumeric = policy.alphanumericDevicePasswordRequired != 0;
    const bool simple = policy.allowSimplePassword != 0;
    const int longer =
        policy.minDevicePasswordLength > countryMinLength ? policy.minDevicePasswordLength : countryMinLength;
    TeskPolicySettings settings;
    settings.quality = qualities.at(password ? 1 : 0).at(alphanumeric ? 1 : 0).at(simple ? 1 : 0);
    settings.minLength = password ? longer : 0;
    settings.failedAttempts = policy.maxDevicePasswordFailedAttempts == 0 ? 10 : policy.maxDevicePasswordFailedAttempts;
    settings.complexCharacters = alphanumeric ? policy.minDevicePasswordComplexCharacters : 0;
    settings.inactivity = policy.maxInactivityTimeDeviceLock;
    settings.expiration = policy.devicePasswordExpiration;
    settings.history = policy.devicePasswordHistory;
    settings.wifi = policy.allowWifi;
    settings.messaging = policy.allowTextMessaging;
    settings.popImap = policy.allowPopimapEmail;
    settings.encryption = policy.requireDeviceEncryption != 0;
    return textOf(settings);
}

void tryPolicy(const TeskPolicyData& policy, Combinations& combinations) {
    for (const int countryMinLength : {4, 6}) {
        const auto settings = textOf(TeskPolicySettings::of(policy, countryMinLength));
        combinations.add(settings == expected(policy, countryMinLength),
                         [&] { return settings + "instead of " + expected(policy, countryMinLength); });
    }
}

TEST(SettingsCombinations, EveryTwoFieldsSetWhatTheyShould) {
    Combinations combinations(100000);
    for (const int password : {0, 1}) {
        for (const auto& one : fields()) {
            for (const auto& other : fields()) {
                for (const Value oneValue : one.allValues()) {
                    for (const Value otherValue : other.allValues()) {
                        TeskPolicyData policy;
                        policy.devicePasswordEnabled = password;
                        policy.*one.place = oneValue;
                        policy.*other.place = otherValue;
                        tryPolicy(policy, combinations);
                    }
                }
            }
        }
    }
}

TEST(SettingsCombinations, OnlyATextThatKrBeginsWithMakesPasswordsLonger) {
    const std::string korea = "KR";
    Combinations combinations(585);
    const std::string letters = "KRkrGB\x01 ";
    std::vector<std::string> countries{""};
    for (std::size_t next = 0; next < countries.size(); ++next) {
        const std::string country = countries[next];
        const int length = korea.rfind(country, 0) == 0 ? 6 : 4;
        combinations.add(TeskPolicySettings::countryMinLength(country.c_str()) == length,
                         [&] { return "country '" + country + "'"; });
        for (const char letter : letters) {
            if (country.size() < 3) {
                countries.push_back(country + letter);
            }
        }
    }
    EXPECT_EQ(TeskPolicySettings::countryMinLength(nullptr), 4);
}

} // namespace
