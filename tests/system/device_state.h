#ifndef TESTS_SYSTEM_DEVICE_STATE_H
#define TESTS_SYSTEM_DEVICE_STATE_H

#include <filesystem>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace system_test {

/// The settings of the device policy manager that policies reach, in the order in which a policy is applied. At first
/// nothing is required and everything is allowed.
struct Settings {
    int quality = 0;
    int minLength = 0;
    int failedAttempts = 10;
    int complexCharacters = 0;
    int inactivity = 0;
    int expiration = 0;
    int history = 0;
    int wifi = 1;
    int messaging = 1;
    int popImap = 1;
    /// Whether the encryption of the internal storage is demanded.
    int encryption = 0;

    bool operator==(const Settings& other) const;
};

void PrintTo(const Settings& settings, std::ostream* output);

/// What the device policy manager of this process's watch holds now.
Settings settings();

/// What it holds once nothing is required and everything is allowed.
inline constexpr Settings releasedSettings;

/// What it holds when these settings have other values.
constexpr Settings with(Settings settings, std::initializer_list<std::pair<int Settings::*, int>> changes) {
    for (const auto& [setting, value] : changes) {
        settings.*setting = value;
    }
    return settings;
}

/// What it holds while the policy of that name is enforced.
inline constexpr Settings hardenedSettings = with(releasedSettings, {{&Settings::quality, 128},
                                                                     {&Settings::minLength, 4},
                                                                     {&Settings::complexCharacters, 1},
                                                                     {&Settings::inactivity, 900},
                                                                     {&Settings::expiration, 365},
                                                                     {&Settings::history, 4},
                                                                     {&Settings::encryption, 1}});

/// What it holds once the service no longer administers the device: the rules for the password have gone with it.
inline constexpr Settings abandonedSettings{0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 0};

/// Whether the service is an administrator of the device.
bool isServiceAdministrator();

/// A number of the settings store, by its key; none when it was never set.
std::optional<int> key(const std::string& name);

/// Changes a number of the settings store, as another application does.
void setKey(const std::string& name, int value);
void setKey(const std::string& name, const std::string& value);

/// The account that the password is enforced for, as the service noted it; none when it never did.
std::optional<int> enforcingAccount();

namespace keys {
inline constexpr char passwordApplied[] = "db/eas/password_policy_applied";
inline constexpr char encryptionApplied[] = "db/eas/device_encryption_applied";
inline constexpr char inputFinished[] = "db/eas/is_pwd_input_finished";
inline constexpr char lockType[] = "db/setting/lock_type";
inline constexpr char cryptoState[] = "db/ode/crypto_state";
} // namespace keys

/// A stored account: its columns, in order, as texts.
using Row = std::vector<std::string>;

/// The stored accounts in the order of their ids.
std::vector<Row> storedRows(const std::filesystem::path& database);

/// Their ids alone.
std::vector<std::string> storedAccounts(const std::filesystem::path& database);

} // namespace system_test

#endif
