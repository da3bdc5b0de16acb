#include "check/demands.h"

#include <array>
#include <cstdint>

#include "rules/TeskPasswordDecision.h"
#include "text/value_text.h"

namespace deskwatch {
namespace {

/// When a value is stricter than another.
enum class Order { Quality, LargerIsStricter, SmallerIsStricterAndZeroIsNone, ZeroForbids };

/// What decides whether an account wants something of a setting at all.
struct Row {
    Order order;
    /// The field that is 0 when the account leaves the setting open; null when it never does.
    std::int32_t TeskPolicyData::*asks;
    /// Whether the account must want a password.
    bool isPasswordRule;
};

using Data = TeskPolicyData;

/// In the order of deviceSettings.
constexpr std::array<Row, 11> rows{{
    {Order::Quality, nullptr, true},
    {Order::LargerIsStricter, nullptr, true},
    {Order::SmallerIsStricterAndZeroIsNone, &Data::maxDevicePasswordFailedAttempts, false},
    {Order::LargerIsStricter, &Data::minDevicePasswordComplexCharacters, true},
    {Order::SmallerIsStricterAndZeroIsNone, &Data::maxInactivityTimeDeviceLock, false},
    {Order::SmallerIsStricterAndZeroIsNone, &Data::devicePasswordExpiration, false},
    {Order::LargerIsStricter, &Data::devicePasswordHistory, false},
    {Order::ZeroForbids, nullptr, false},
    {Order::ZeroForbids, nullptr, false},
    {Order::ZeroForbids, nullptr, false},
    {Order::LargerIsStricter, &Data::requireDeviceEncryption, false},
}};

bool asksFor(const Row& row, const Data& account) {
    const bool isOpen = row.asks != nullptr && account.*row.asks == 0;
    return !isOpen && (!row.isPasswordRule || account.devicePasswordEnabled != 0);
}

/// The lowest bit of a quality allows simple passwords.
bool isWeakerQuality(int wanted, int held) {
    const bool letsSimpleThrough = (wanted & 1) == 0 && (held & 1) != 0;
    return TeskPasswordDecision::typeOf(held) < TeskPasswordDecision::typeOf(wanted) || letsSimpleThrough;
}

} // namespace

std::vector<Demand> demandsOf(const DeviceFacts& facts) {
    std::vector<Demand> demands;
    for (const auto& account : facts.accounts) {
        const auto settings = TeskPolicySettings::of(*account, facts.countryMinLength());
        for (std::size_t setting = 0; setting < rows.size(); ++setting) {
            const auto wanted = deviceSettings.at(setting).written(settings, facts.isEncrypted());
            if (wanted && *wanted >= 0 && asksFor(rows.at(setting), *account)) {
                demands.push_back({account->accountId, setting, *wanted});
            }
        }
    }
    return demands;
}

bool isWeaker(const Demand& demand, const std::optional<int>& value) {
    const int held = value.value_or(0);
    switch (rows.at(demand.setting).order) {
    case Order::Quality:
        return isWeakerQuality(demand.value, held);
    case Order::LargerIsStricter:
        return held < demand.value;
    case Order::SmallerIsStricterAndZeroIsNone:
        return held <= 0 || held > demand.value;
    case Order::ZeroForbids:
        break;
    }
    return demand.value == 0 && value.value_or(1) != 0;
}

std::string demandText(const Demand& demand, const std::optional<int>& held) {
    return "account " + std::to_string(demand.account) + " wants " + deviceSettings.at(demand.setting).name + " " +
           std::to_string(demand.value) + ", the device holds " + (held ? numberText(held) : "nothing");
}

} // namespace deskwatch
