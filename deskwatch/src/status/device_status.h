#ifndef DESKWATCH_DEVICE_STATUS_H
#define DESKWATCH_DEVICE_STATUS_H

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "explain/device_facts.h"
#include "records/idle_exit.h"
#include "session/device_session.h"
#include "session/device_settings.h"
#include "session/lock_screen.h"
#include "session/platform_faults.h"
#include "session/value.h"

namespace deskwatch {

/// A launch request that an application got.
struct ScreenLaunch {
    std::string application;
    std::string caller;
    /// Whether the application still owes an answer.
    bool waiting = false;
    std::vector<std::pair<std::string, std::string>> extraData;
};

/// A message that the mail application received at its port.
struct ReceivedMessage {
    std::string sender;
    std::vector<std::pair<std::string, std::string>> entries;
};

/// What a watch shows of itself.
struct DeviceStatus {
    std::string folder;
    bool isBooted = true;
    bool isServiceRunning = false;
    /// Set while the service is about to end itself.
    std::optional<IdleExit> idleExit;
    std::vector<StoredAccount> accounts;
    /// What the accounts' policies are together, by the accounts' columns; one that is not merged has no value. Empty
    /// when there is no account.
    StoredAccount mergedPolicy;
    /// What the device policy manager holds.
    SettingValues settings{};
    /// The keys of the settings store that policies are about.
    std::vector<NamedValue> keys;
    /// The account that the password is enforced for, as the service noted it.
    NamedValue enforcingAccount;
    LockScreen lockScreen;
    /// How often the internal storage was wiped since the boot.
    int wipes = 0;
    /// The launch requests of the applications that run, in order within each.
    std::vector<ScreenLaunch> screens;
    /// The functions of the platform that fail.
    std::vector<PlatformFault> faults;
    /// What the mail application received while it runs, in order.
    std::vector<ReceivedMessage> messages;
};

/// Looks at a booted watch; starts nothing and changes nothing there. Throws std::runtime_error.
DeviceStatus readStatus(const DeviceSession& session);

/// How often the internal storage of a watch was wiped since its last boot.
int countWipes(const DeviceLayout& files);

/// What of it decides how the watch takes a policy.
DeviceFacts deviceFacts(const DeviceStatus& status);

/// The status as tables for a reader. With an earlier one, settings and keys that had another value then are marked
/// with it.
std::string statusTables(const DeviceStatus& status, const DeviceStatus* earlier = nullptr);

/// The status as one JSON object.
std::string statusJson(const DeviceStatus& status);

/// The same on one line.
std::string statusJsonLine(const DeviceStatus& status);

/// Functions that fail, as a table for a reader and as a JSON array.
std::string faultTable(const std::vector<PlatformFault>& faults);
nlohmann::ordered_json faultsJson(const std::vector<PlatformFault>& faults);

} // namespace deskwatch

#endif
