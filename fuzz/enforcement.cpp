#include "enforcement.h"

#include <map>
#include <string>

#include "TeskConsumerDbMgr.h"
#include "fuzz_target.h"
#include "rules/TeskPolicyMerge.h"
#include "rules/TeskPolicySettings.h"

namespace {

std::map<std::string, int> expectedSettings(const fake::SettingsStore& keys) {
    TeskPolicyDataList accounts;
    TeskConsumerDbMgr::getInstance()->getPolicyDataList(accounts);
    const auto country = keys.text("db/rgn/country_iso");
    const auto settings =
        TeskPolicySettings::of(TeskPolicyMerge::strongest(accounts),
                               TeskPolicySettings::countryMinLength(country ? country->c_str() : nullptr));

    std::map<std::string, int> expected{
        {"quality", settings.quality},
        {"minimum_length", settings.minLength},
        {"maximum_failed_attempts_for_wipe", settings.failedAttempts},
        {"min_complex_chars", settings.complexCharacters},
        {"max_inactivity_time_device_lock", settings.inactivity},
        {"expires", settings.expiration},
        {"history", settings.history},
        {"wifi_state", settings.wifi},
        {"messaging_state", settings.messaging},
        {"popimap_email_state", settings.popImap},
    };
    const auto crypto = keys.text("db/ode/crypto_state");
    if (settings.needsEncryptionWrite(TeskPolicySettings::isEncrypted(crypto ? crypto->c_str() : nullptr))) {
        expected["internal_storage_encryption"] = settings.encryption ? 1 : 0;
    }
    return expected;
}

} // namespace

void fuzz::requireStoredPoliciesEnforced(const fake::FakePlatform& platform) {
    for (const auto& [name, value] : expectedSettings(platform.settings)) {
        const int actual = platform.devicePolicy.setting(name);
        require(actual == value, "the device's " + name + " is " + std::to_string(value) +
                                     " as the stored policies say; it is " + std::to_string(actual));
    }
}
