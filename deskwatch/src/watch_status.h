#ifndef DESKWATCH_WATCH_STATUS_H
#define DESKWATCH_WATCH_STATUS_H

#include "value.h"
#include "watch_client.h"

#include <string>
#include <utility>
#include <vector>

namespace deskwatch {

/// A launch request that an application got.
struct ScreenLaunch {
    std::string application;
    std::string caller;
    /// Whether the application still owes an answer.
    bool waiting = false;
    std::vector<std::pair<std::string, std::string>> extraData;
};

/// What a watch shows of itself.
struct WatchStatus {
    std::string folder;
    bool isServiceRunning = false;
    std::vector<StoredAccount> accounts;
    /// What the device policy manager holds.
    std::vector<NamedValue> settings;
    /// The keys of the settings store that policies are about.
    std::vector<NamedValue> keys;
    /// The account that the password is enforced for, as the service noted it.
    NamedValue enforcingAccount;
    /// The launch requests of the applications that run, in order within each.
    std::vector<ScreenLaunch> screens;
};

/// Looks at a booted watch; starts nothing and changes nothing there. Throws std::runtime_error.
WatchStatus readStatus(const WatchClient& watch);

/// The status as tables for a reader.
std::string statusTables(const WatchStatus& status);

/// The status as one JSON object.
std::string statusJson(const WatchStatus& status);

} // namespace deskwatch

#endif
