#ifndef DESKWATCH_WATCH_FACTS_H
#define DESKWATCH_WATCH_FACTS_H

#include "device_settings.h"
#include "value.h"

#include <TeskPolicyData.h>

#include <optional>
#include <string>
#include <vector>

namespace deskwatch {

/// What decides how a watch takes a policy.
struct WatchFacts {
    /// By account number.
    TeskPolicyDataList accounts;
    /// What the device policy manager holds.
    SettingValues settings;
    /// 0 none, 1 PIN, more: stronger.
    int lockType = 0;
    std::optional<std::string> country;
    std::optional<std::string> cryptoState;
    bool isTutorialShown = false;
    bool isServiceRunning = true;

    int countryMinLength() const { return TeskPolicySettings::countryMinLength(country ? country->c_str() : nullptr); }
    bool isEncrypted() const { return TeskPolicySettings::isEncrypted(cryptoState ? cryptoState->c_str() : nullptr); }
};

/// Stored accounts as the records that the service reads them into, in the same order.
TeskPolicyDataList policyRecords(const std::vector<StoredAccount>& accounts);

} // namespace deskwatch

#endif
