#include "accounts.h"

#include <gtest/gtest.h>

#include <memory>

#include "messages.h"
#include "rules/TeskPolicyMerge.h"
#include "rules/TeskPolicySettings.h"

namespace load_test {
namespace {

constexpr int countryMinLength = 4;

std::string nameOf(int id, int number) {
    return "user" + std::to_string(id) + "-" + std::to_string(number) + "@load.example";
}

} // namespace

void PrintTo(const Demands& demands, std::ostream* output) {
    *output << "number " << demands.number << ", length " << demands.length << ", inactivity " << demands.inactivity
            << (demands.wifi ? "" : ", no Wi-Fi");
}

Accounts mailAccounts(Accounts accounts) {
    accounts.erase(diagnosticAccount);
    return accounts;
}

Accounts diagnosticAccounts(const Accounts& accounts) {
    const auto found = accounts.find(diagnosticAccount);
    return found != accounts.end() ? Accounts{*found} : Accounts{};
}

std::string updateOf(int id, const Demands& demands) {
    const std::string policy =
        R"({"PasswordMode":32,"allowCamera":true,"allowBluetoothMode":true,"allowBrowser":true,)"
        R"("allowDesktopSync":true,"allowInternetSharing":true,"allowPOPIMAPEmail":true,"allowSimplePassword":true,)"
        R"("allowStorageCard":true,"allowTextMessaging":true,"allowWifi":)" +
        std::string(demands.wifi ? "true" : "false") + R"(,"devicePasswordEnabled":true,"devicePasswordExpiration":)" +
        std::to_string(demands.number) + R"(,"maxInactivityTimeDeviceLock":)" + std::to_string(demands.inactivity) +
        R"(,"minDevicePasswordLength":)" + std::to_string(demands.length) + "}";
    return system_test::policyUpdate({{id, nameOf(id, demands.number), policy}});
}

Accounts storedAccounts(const std::filesystem::path& database) {
    constexpr std::size_t length = 5;
    constexpr std::size_t inactivity = 7;
    constexpr std::size_t expiration = 9;
    constexpr std::size_t wifi = 21;
    constexpr std::size_t name = 22;
    Accounts accounts;
    for (const auto& row : system_test::storedRows(database)) {
        const auto number = [&row](std::size_t column) { return std::stoi(row.at(column)); };
        accounts[number(0)] = {number(expiration), number(length), number(inactivity), number(wifi) != 0};
        const bool isDiagnostic = number(0) == diagnosticAccount;
        EXPECT_EQ(row.at(name), isDiagnostic ? "test@tesk.example" : nameOf(number(0), number(expiration)));
    }
    return accounts;
}

system_test::Settings settingsOf(const Accounts& accounts) {
    TeskPolicyDataList records;
    for (const auto& [id, demands] : accounts) {
        auto& record = *records.emplace_back(std::make_shared<TeskPolicyData>());
        record.devicePasswordEnabled = 1;
        record.devicePasswordExpiration = demands.number;
        record.minDevicePasswordLength = demands.length;
        record.maxInactivityTimeDeviceLock = demands.inactivity;
        record.allowWifi = demands.wifi ? 1 : 0;
    }
    const auto ruled = TeskPolicySettings::of(TeskPolicyMerge::strongest(records), countryMinLength);
    return system_test::with(system_test::releasedSettings, {{&system_test::Settings::quality, ruled.quality},
                                                             {&system_test::Settings::minLength, ruled.minLength},
                                                             {&system_test::Settings::expiration, ruled.expiration},
                                                             {&system_test::Settings::inactivity, ruled.inactivity},
                                                             {&system_test::Settings::wifi, ruled.wifi}});
}

} // namespace load_test
