#include "accounts.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "messages.h"

namespace load_test {
namespace {

constexpr int simplePin = 33;
constexpr int shortest = 4; // the country's

std::string nameOf(int id, int number) {
    return "user" + std::to_string(id) + "-" + std::to_string(number) + "@load.example";
}

/// The smaller limit; 0 is none.
int stricter(int limit, int other) {
    return limit == 0 || other == 0 ? std::max(limit, other) : std::min(limit, other);
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
    if (accounts.empty()) {
        return system_test::releasedSettings;
    }
    Demands all;
    for (const auto& [id, demands] : accounts) {
        all.number = stricter(all.number, demands.number);
        all.length = std::max(all.length, demands.length);
        all.inactivity = stricter(all.inactivity, demands.inactivity);
        all.wifi = all.wifi && demands.wifi;
    }
    system_test::Settings settings = system_test::releasedSettings;
    settings.quality = simplePin;
    settings.minLength = std::max(shortest, all.length);
    settings.expiration = all.number;
    settings.inactivity = all.inactivity;
    settings.wifi = all.wifi ? 1 : 0;
    return settings;
}

} // namespace load_test
