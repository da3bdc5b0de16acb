#include "rules/TeskPolicySettings.h"

#include <cstring>

#include "rules/TeskPasswordDecision.h"

namespace {

constexpr int defaultFailedAttempts = 10;
constexpr int minLengthElsewhere = 4;
constexpr int minLengthInKorea = 6;

} // namespace

TeskPolicySettings TeskPolicySettings::of(const TeskPolicyData& policy, int countryMinLength) {
    const auto password = TeskPasswordDecision::required(policy, countryMinLength);
    TeskPolicySettings settings;
    settings.quality = password.quality;
    settings.minLength = password.minLength;
    settings.failedAttempts =
        policy.maxDevicePasswordFailedAttempts != 0 ? policy.maxDevicePasswordFailedAttempts : defaultFailedAttempts;
    settings.complexCharacters = TeskPasswordDecision::complexCharacters(policy);
    settings.inactivity = policy.maxInactivityTimeDeviceLock;
    settings.expiration = policy.devicePasswordExpiration;
    settings.history = policy.devicePasswordHistory;
    settings.wifi = policy.allowWifi;
    settings.messaging = policy.allowTextMessaging;
    settings.popImap = policy.allowPopimapEmail;
    settings.encryption = policy.requireDeviceEncryption != 0;
    return settings;
}

int TeskPolicySettings::countryMinLength(const char* country) {
    // compared over the stored text's own length, so that an unset region ("") gets the longer minimum too
    const bool longer = country != nullptr && std::strncmp(country, "KR", std::strlen(country)) == 0;
    return longer ? minLengthInKorea : minLengthElsewhere;
}

bool TeskPolicySettings::isEncrypted(const char* cryptoState) {
    return cryptoState == nullptr || std::strcmp(cryptoState, "unencrypted") != 0;
}
