#include "explain/forecast.h"

#include <algorithm>

#include "device/application_ids.h"
#include "rules/TeskPolicyMerge.h"

namespace deskwatch {
namespace {

constexpr std::size_t qualitySetting = 0;
constexpr std::size_t minLengthSetting = 1;
constexpr std::size_t complexCharactersSetting = 3;
constexpr char nameOfNoAccount[] = "EAS";

std::string reasonText(TeskPasswordVerdict verdict) {
    switch (verdict) {
    case TeskPasswordVerdict::QualityTooWeak:
        return "a stronger kind of password is required";
    case TeskPasswordVerdict::SimplePasswordAllowed:
        return "simple passwords are forbidden now";
    case TeskPasswordVerdict::TooShort:
        return "a longer password is required";
    case TeskPasswordVerdict::TooFewComplexCharacters:
        return "more kinds of characters are required";
    case TeskPasswordVerdict::NoLock:
        return "the watch has no lock";
    case TeskPasswordVerdict::PinInsteadOfPassword:
        return "the lock is a PIN";
    case TeskPasswordVerdict::Satisfied:
        break;
    }
    return "";
}

/// Goes the service's way through messages, on a copy of what the watch holds.
class Course {
public:
    explicit Course(DeviceFacts device) : device_(std::move(device)) {}

    /// A service that is started for a message enforces what is stored first.
    void start() {
        if (!device_.isServiceRunning && !device_.accounts.empty()) {
            enforce("start of the service");
        }
        device_.isServiceRunning = true;
    }

    void take(const Arrival& arrival) {
        if (!arrival.isKnown) {
            remarks_.push_back(arrival.source + " is no message that the service knows: it changes nothing");
        }
        for (const auto& policy : arrival.policies) {
            store(policy, arrival.source);
        }
        if (arrival.isApplied) {
            enforce(arrival.source);
        }
        if (arrival.isWipe) {
            remarks_.push_back(arrival.source + " wipes the internal storage at once");
        }
    }

    /// Hands over what was found.
    void tell(Forecast& forecast) {
        forecast.mergedAfter = TeskPolicyMerge::strongest(device_.accounts);
        forecast.settingsAfter = device_.settings;
        forecast.accounts = std::move(accounts_);
        forecast.screens = std::move(screens_);
        forecast.remarks = std::move(remarks_);
    }

private:
    void store(const TeskPolicyData& policy, const std::string& source) {
        if (policy.accountId < 1) {
            remarks_.push_back(source + ": account " + std::to_string(policy.accountId) +
                               " is no valid one and is not stored");
            return;
        }
        auto& accounts = device_.accounts;
        const auto place = std::find_if(accounts.begin(), accounts.end(),
                                        [&](const auto& stored) { return stored->accountId >= policy.accountId; });
        const bool isNew = place == accounts.end() || (*place)->accountId != policy.accountId;
        const auto record = std::make_shared<TeskPolicyData>(policy);
        if (isNew) {
            accounts.insert(place, record);
        } else {
            *place = record;
        }
        accounts_.push_back({policy.accountId, policy.accountName, isNew});
    }

    void enforce(const std::string& source) {
        const auto merged = TeskPolicyMerge::strongest(device_.accounts);
        const auto reason = passwordReason(merged);
        const bool needsEncryption = merged.requireDeviceEncryption != 0 && !device_.isEncrypted();
        write(merged);
        if (needsEncryption) {
            screens_.push_back({ids::encryptionSettings, source, "the menu for encryption is enabled"});
        }
        if (!reason.empty()) {
            openPopup(source, reason);
        }
    }

    /// Why the wearer must set a stronger lock; empty when the lock will do.
    std::string passwordReason(const TeskPolicyData& merged) const {
        const auto& now = device_.settings;
        if (!now[qualitySetting] || !now[minLengthSetting] || !now[complexCharactersSetting]) {
            return "the watch does not tell what its password must be";
        }
        const TeskPasswordRules current{TeskPasswordDecision::migrated(*now[qualitySetting]), *now[minLengthSetting],
                                        *now[complexCharactersSetting]};
        const auto required = TeskPasswordDecision::required(merged, device_.countryMinLength());
        const auto rules = TeskPasswordDecision::compareRules(current, required, merged.allowSimplePassword != 0);
        return rules != TeskPasswordVerdict::Satisfied
                   ? reasonText(rules)
                   : reasonText(TeskPasswordDecision::compareLock(required.quality, device_.lockType));
    }

    void write(const TeskPolicyData& merged) {
        if (device_.accounts.empty()) {
            return; // the device policy manager refuses a service that administers nothing
        }
        const auto settings = TeskPolicySettings::of(merged, device_.countryMinLength());
        std::transform(deviceSettings.begin(), deviceSettings.end(), device_.settings.begin(), device_.settings.begin(),
                       [&](const DeviceSetting& setting, const auto& before) {
                           const auto value = setting.written(settings, device_.isEncrypted());
                           return value ? value : before;
                       });
    }

    void openPopup(const std::string& source, const std::string& reason) {
        if (device_.isTutorialShown) {
            remarks_.push_back(source + ": the popup would ask for a lock (" + reason +
                               "), but stays closed while the tutorial is shown");
            return;
        }
        screens_.push_back({ids::popup, source, "asks for a lock for " + enforcingName() + ": " + reason});
    }

    std::string enforcingName() const {
        const int id = TeskPolicyMerge::passwordEnforcingAccountId(device_.accounts);
        for (const auto& account : device_.accounts) {
            if (account->accountId == id) {
                return account->accountName;
            }
        }
        return nameOfNoAccount;
    }

    DeviceFacts device_;
    std::vector<AccountForecast> accounts_;
    std::vector<ScreenForecast> screens_;
    std::vector<std::string> remarks_;
};

} // namespace

Forecast forecast(const DeviceFacts& device, const std::vector<Arrival>& arrivals) {
    Forecast forecast;
    forecast.mergedBefore = TeskPolicyMerge::strongest(device.accounts);
    forecast.settingsBefore = device.settings;
    Course course(device);
    course.start();
    for (const auto& arrival : arrivals) {
        course.take(arrival);
    }
    course.tell(forecast);
    return forecast;
}

} // namespace deskwatch
