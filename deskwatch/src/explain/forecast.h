#ifndef DESKWATCH_FORECAST_H
#define DESKWATCH_FORECAST_H

#include <string>
#include <vector>

#include "explain/device_facts.h"
#include "rules/TeskPasswordDecision.h"

namespace deskwatch {

/// What a message would have the service do.
struct Arrival {
    /// Where the message comes from, for the reader.
    std::string source;
    /// Whether the service knows the message; else it changes nothing.
    bool isKnown = false;
    /// The policies that it carries, in order.
    std::vector<TeskPolicyData> policies;
    /// Whether the stored policies are enforced then.
    bool isApplied = false;
    bool isWipe = false;
};

/// A screen that would open, and what opens it.
struct ScreenForecast {
    std::string application;
    std::string source;
    std::string reason;
};

/// What became of an account.
struct AccountForecast {
    int account = 0;
    std::string name;
    bool isNew = false;
};

/// What would be different on a watch.
struct Forecast {
    std::vector<AccountForecast> accounts;
    TeskPolicyData mergedBefore;
    TeskPolicyData mergedAfter;
    SettingValues settingsBefore;
    SettingValues settingsAfter;
    std::vector<ScreenForecast> screens;
    /// What the reader should be told besides.
    std::vector<std::string> remarks;
};

/// What would change on a watch if these messages arrived, one after the other, by the service's own rules. Nothing is
/// touched.
Forecast forecast(const DeviceFacts& device, const std::vector<Arrival>& arrivals);

/// The forecast as tables for a reader: what changes only.
std::string forecastText(const Forecast& forecast);

/// The forecast as one JSON object: every field, before and after.
std::string forecastJson(const Forecast& forecast);

} // namespace deskwatch

#endif
