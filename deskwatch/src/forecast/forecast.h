#ifndef DESKWATCH_FORECAST_H
#define DESKWATCH_FORECAST_H

#include <string>
#include <utility>
#include <vector>

#include "device/device.h"
#include "rules/TeskPolicyData.h"
#include "session/device_settings.h"
#include "session/value.h"
#include "status/device_status.h"

namespace deskwatch {

/// A message and where it comes from, for the reader.
struct SourcedMessage {
    std::string source;
    std::string text;
};

/// A screen that would open, what opens it, and why.
struct ScreenForecast {
    ScreenLaunch launch;
    std::string source;
    std::string reason;
};

/// What would become of an account.
struct AccountForecast {
    int account = 0;
    std::string name;
    bool isNew = false;
};

/// What a watch shows of its policy at one time.
struct PolicyState {
    TeskPolicyData merged;
    SettingValues settings{};
    /// The keys that policies are about, and the account that the password is enforced for.
    std::vector<NamedValue> keys;
};

/// What would be different on a watch.
struct Forecast {
    std::vector<AccountForecast> accounts;
    PolicyState before;
    PolicyState after;
    std::vector<ScreenForecast> screens;
    /// What else the reader should know, including the service's own warnings.
    std::vector<std::string> remarks;
};

/// What would change on a booted watch if these messages arrived as policy updates, one after the other: sends them to
/// the service on a copy of the watch and compares. The watch itself is not touched. Throws std::runtime_error when it
/// is not booted, or the service on the copy does not come up or ends over a message.
Forecast forecast(const Device& device, const std::vector<SourcedMessage>& messages);

/// The forecast as tables for a reader: what changes only.
std::string forecastText(const Forecast& forecast);

/// The forecast as one JSON object: every field, before and after.
std::string forecastJson(const Forecast& forecast);

} // namespace deskwatch

#endif
