#include "checks.h"

#include <map>

#include "accounts.h"
#include "events.h"
#include "rules/TeskPolicyMerge.h"
#include "rules/TeskPolicySettings.h"
#include "sample_policies.h"

namespace harness {

namespace {

constexpr char cryptoState[] = "db/ode/crypto_state";

const char* textOrNull(const std::optional<std::string>& text) {
    return text ? text->c_str() : nullptr;
}

std::map<std::string, int> rulesOfStoredAccounts(const fake::SettingsStore& keys) {
    const int countryMinLength = TeskPolicySettings::countryMinLength(textOrNull(keys.text("db/rgn/country_iso")));
    const auto settings = TeskPolicySettings::of(TeskPolicyMerge::strongest(storedAccounts()), countryMinLength);
    std::map<std::string, int> rules{
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
    if (settings.needsEncryptionWrite(TeskPolicySettings::isEncrypted(textOrNull(keys.text(cryptoState))))) {
        rules["internal_storage_encryption"] = settings.encryption ? 1 : 0;
    }
    return rules;
}

/// A device refuses negative values, and some of its rules do not hold large ones.
bool isHeldByDevices(int value) {
    constexpr int most = 32766;
    return value >= 0 && value <= most;
}

bool isPublished(const fake::SettingsStore& keys) {
    return keys.integer("db/eas/password_policy_applied") == 0 && keys.integer("db/eas/device_encryption_applied") == 0;
}

/// The menu for encryption is enabled, and a popup names the account whose password is demanded.
bool isWearerTold(const fake::Launches& launches) {
    const auto accountId = TeskPolicyMerge::passwordEnforcingAccountId(storedAccounts());
    return launches.sent.size() == 2 &&
           launches.sent.at(1).extraData.at(1).second == storedAccount(accountId).accountName;
}

} // namespace

std::string flawOfEnforcement(const Watch& watch) {
    for (const auto& [name, value] : rulesOfStoredAccounts(watch.platform.settings)) {
        const int actual = watch.platform.devicePolicy.setting(name);
        if (isHeldByDevices(value) && actual != value) {
            return "the device's " + name + " is " + std::to_string(actual) + ", not " + std::to_string(value) +
                   " as the stored policies say";
        }
    }
    return "";
}

std::string flawAfterGoodRequest(Watch& watch) {
    auto& platform = watch.platform;
    platform.devicePolicy.settings.clear();
    platform.launches.sent.clear();
    platform.settings.setKeyAsDevice(cryptoState, "unencrypted");
    platform.settings.unset("memory/private/com.velmor.hearth/tutorial_is_in_progress");

    policyArrives(goodAccountId, samples::strictest)(watch);

    const auto stored = storedAccount(goodAccountId);
    if (stored.minDevicePasswordLength != 16 || stored.accountName != "alice@contoso.example") {
        return "not stored";
    }
    if (std::string flaw = flawOfEnforcement(watch); !flaw.empty()) {
        return flaw;
    }
    if (!isPublished(platform.settings)) {
        return "not published";
    }
    return isWearerTold(platform.launches) ? "" : "the wearer is not told";
}

void deleteEveryAccount(Watch& watch) {
    for (const auto& account : storedAccounts()) {
        accountIsRemoved(std::to_string(account->accountId))(watch);
    }
}

} // namespace harness
