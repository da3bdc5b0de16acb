#ifndef DESKWATCH_DEVICE_FACTS_H
#define DESKWATCH_DEVICE_FACTS_H

#include <optional>
#include <string>
#include <vector>

#include "rules/TeskPolicyData.h"
#include "session/device_settings.h"
#include "session/value.h"

namespace deskwatch {

/// What decides how a watch takes a policy.
struct DeviceFacts {
    /// By account number.
    TeskPolicyDataList accounts;
    /// What the device policy manager holds.
    SettingValues settings{};
    std::optional<std::string> country;
    std::optional<std::string> cryptoState;
    /// The functions of the platform that fail, with what they return.
    std::vector<std::pair<std::string, int>> faults{};

    int countryMinLength() const { return TeskPolicySettings::countryMinLength(country ? country->c_str() : nullptr); }
    bool isEncrypted() const { return TeskPolicySettings::isEncrypted(cryptoState ? cryptoState->c_str() : nullptr); }
};

/// Stored accounts as the records that the service reads them into, in the same order.
TeskPolicyDataList policyRecords(const std::vector<StoredAccount>& accounts);

} // namespace deskwatch

#endif
