#ifndef LOAD_ACCOUNTS_H
#define LOAD_ACCOUNTS_H

#include <map>
#include <string>

#include "device_state.h"

namespace load_test {

/// What one account demands. The number is that of the request that brought it, and is also its password's expiration.
struct Demands {
    int number = 0;
    int length = 0;
    int inactivity = 0;
    bool wifi = true;

    bool operator==(const Demands& other) const {
        return number == other.number && length == other.length && inactivity == other.inactivity && wifi == other.wifi;
    }
};

void PrintTo(const Demands& demands, std::ostream* output);

/// Accounts by their ids.
using Accounts = std::map<int, Demands>;

/// The account that the diagnostic interface makes.
inline constexpr int diagnosticAccount = 999;

/// The accounts without the diagnostic one.
Accounts mailAccounts(Accounts accounts);

/// The diagnostic account alone, if it is there.
Accounts diagnosticAccounts(const Accounts& accounts);

/// The message that brings an account's demands.
std::string updateOf(int id, const Demands& demands);

/// The accounts as they are stored. An account whose name is not that of the request that its number tells fails the
/// test.
Accounts storedAccounts(const std::filesystem::path& database);

/// The rules that the device must hold while these accounts are stored, by the service's own rules.
system_test::Settings settingsOf(const Accounts& accounts);

} // namespace load_test

#endif
