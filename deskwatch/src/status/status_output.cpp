#include <algorithm>

#include "status/device_status.h"
#include "text/text_table.h"
#include "text/value_output.h"
#include "text/value_words.h"

namespace deskwatch {
namespace {

using Json = nlohmann::ordered_json;

Json asObject(const std::vector<NamedValue>& values) {
    Json object = Json::object();
    for (const auto& [name, value] : values) {
        object[name] = valueJson(value);
    }
    return object;
}

std::vector<NamedValue> named(const SettingValues& values) {
    std::vector<NamedValue> list;
    for (std::size_t setting = 0; setting < deviceSettings.size(); ++setting) {
        list.push_back({deviceSettings[setting].name, values[setting] ? Value(*values[setting]) : Value()});
    }
    return list;
}

/// The value that an earlier status had under that name, where it was another one.
std::string markOf(const NamedValue& now, const std::vector<NamedValue>& earlier) {
    const auto before =
        std::find_if(earlier.begin(), earlier.end(), [&](const NamedValue& value) { return value.name == now.name; });
    const bool isChanged = before != earlier.end() && before->value != now.value;
    return isChanged ? "* was " + wordedValue(now.name, before->value) : "";
}

std::string namedValues(const std::vector<NamedValue>& values, const std::vector<NamedValue>& earlier) {
    std::vector<std::vector<std::string>> rows;
    rows.reserve(values.size());
    for (const auto& value : values) {
        rows.push_back({value.name, wordedValue(value.name, value.value), markOf(value, earlier)});
    }
    return textTable(rows);
}

std::vector<NamedValue> keysOf(const DeviceStatus& status) {
    auto keys = status.keys;
    keys.push_back(status.enforcingAccount);
    return keys;
}

std::string serviceText(const DeviceStatus& status) {
    if (!status.isBooted) {
        return std::string("switched off") + (status.isServiceRunning ? ", but the service still runs" : "") +
               "; this is what it keeps";
    }
    if (!status.isServiceRunning) {
        return "the service does not run";
    }
    if (!status.idleExit) {
        return "the service runs";
    }
    return std::string("the service runs, idle exit ") + (status.idleExit->isExact ? "in " : "within ") +
           std::to_string(status.idleExit->in.count()) + " s";
}

/// One column per account: a policy has many fields, a watch few accounts.
std::string accountTable(const DeviceStatus& status) {
    const auto& accounts = status.accounts;
    if (accounts.empty()) {
        return "  none\n";
    }
    std::vector<std::vector<std::string>> rows;
    for (std::size_t field = 0; field < accounts.front().size(); ++field) {
        rows.push_back({accounts.front()[field].name});
        for (const auto& account : accounts) {
            rows.back().push_back(valueText(account[field].value));
        }
        if (field < status.mergedPolicy.size()) {
            rows.back().push_back(field == 0 ? "merged" : valueText(status.mergedPolicy[field].value));
        }
    }
    return textTable(rows);
}

std::string screenTable(const std::vector<ScreenLaunch>& screens) {
    if (screens.empty()) {
        return "  none\n";
    }
    std::string text;
    for (const auto& screen : screens) {
        text += "  " + screen.application + ", launched by " + screen.caller +
                (screen.waiting ? ", which waits for the answer\n" : "\n");
        std::vector<std::vector<std::string>> rows;
        for (const auto& [key, value] : screen.extraData) {
            rows.push_back({"  " + key, value});
        }
        text += textTable(rows);
    }
    return text;
}

std::string messageTable(const std::vector<ReceivedMessage>& messages) {
    std::string text;
    for (const auto& message : messages) {
        text += textTable({{"from " + message.sender}});
        std::vector<std::vector<std::string>> rows;
        for (const auto& [key, value] : message.entries) {
            rows.push_back({"  " + key, value});
        }
        text += textTable(rows);
    }
    return text.empty() ? "  none\n" : text;
}

/// Nothing as long as nobody has used it.
std::string lockScreenText(const DeviceStatus& status) {
    const auto limits = lockLimits(status.settings);
    const auto& screen = status.lockScreen;
    const std::string text = (screen.isLocked ? "  " + inactivityText(screen, limits) + "\n" : "") +
                             (screen.wrongAttempts > 0 ? "  " + wrongAttemptText(screen, limits) + "\n" : "") +
                             (screen.passwordAge > 0 ? "  " + passwordAgeText(screen, limits) + "\n" : "");
    return text.empty() ? text : "\nLock screen\n" + text;
}

/// A wipe of the desk empties a folder that nothing is in; what a device would lose is still shown.
std::string wipeText(const DeviceStatus& status) {
    return status.wipes == 0 ? ""
                             : "Its internal storage was wiped since the boot. A device loses what follows with it and "
                               "starts anew; the desk keeps it.\n";
}

Json messageJson(const ReceivedMessage& message) {
    Json entries = Json::object();
    for (const auto& [key, value] : message.entries) {
        entries[key] = value;
    }
    return {{"sender", message.sender}, {"entries", entries}};
}

Json screenJson(const ScreenLaunch& screen) {
    Json extraData = Json::object();
    for (const auto& [key, value] : screen.extraData) {
        extraData[key] = value;
    }
    return {{"application", screen.application},
            {"caller", screen.caller},
            {"waiting", screen.waiting},
            {"extraData", extraData}};
}

Json statusObject(const DeviceStatus& status) {
    Json object{{"watch", status.folder}, {"booted", status.isBooted}, {"serviceRunning", status.isServiceRunning}};
    object["idleExit"] = status.idleExit
                             ? Json{{"seconds", status.idleExit->in.count()}, {"exact", status.idleExit->isExact}}
                             : Json(nullptr);
    object["accounts"] = Json::array();
    for (const auto& account : status.accounts) {
        object["accounts"].push_back(asObject(account));
    }
    object["mergedPolicy"] = status.mergedPolicy.empty() ? Json(nullptr) : asObject(status.mergedPolicy);
    object["settings"] = asObject(named(status.settings));
    object["keys"] = asObject(status.keys);
    object["enforcingAccount"] = valueJson(status.enforcingAccount.value);
    object["wipes"] = status.wipes;
    object["lockScreen"] = {{"wrongAttempts", status.lockScreen.wrongAttempts},
                            {"passwordAge", status.lockScreen.passwordAge},
                            {"locked", status.lockScreen.isLocked}};
    object["launches"] = Json::array();
    for (const auto& screen : status.screens) {
        object["launches"].push_back(screenJson(screen));
    }
    object["faults"] = faultsJson(status.faults);
    object["messages"] = Json::array();
    for (const auto& message : status.messages) {
        object["messages"].push_back(messageJson(message));
    }
    return object;
}

} // namespace

std::string faultTable(const std::vector<PlatformFault>& faults) {
    std::vector<std::vector<std::string>> rows;
    rows.reserve(faults.size());
    for (const auto& fault : faults) {
        rows.push_back({fault.function, std::to_string(fault.code),
                        fault.nth == 0 ? "every call" : "call " + std::to_string(fault.nth)});
    }
    return rows.empty() ? "  none\n" : textTable(rows);
}

nlohmann::ordered_json faultsJson(const std::vector<PlatformFault>& faults) {
    auto list = nlohmann::ordered_json::array();
    for (const auto& fault : faults) {
        list.push_back({{"function", fault.function}, {"code", fault.code}, {"nth", fault.nth}});
    }
    return list;
}

std::string statusTables(const DeviceStatus& status, const DeviceStatus* earlier) {
    const DeviceStatus& before = earlier != nullptr ? *earlier : status;
    return "Watch " + status.folder + ", " + serviceText(status) + "\n" + wipeText(status) + "\nStored accounts\n" +
           accountTable(status) + "\nSettings of the device policy manager\n" +
           namedValues(named(status.settings), named(before.settings)) + "\nKeys\n" +
           namedValues(keysOf(status), keysOf(before)) + lockScreenText(status) + "\nLaunch requests\n" +
           screenTable(status.screens) + "\nMessages to the mail application\n" + messageTable(status.messages) +
           (status.faults.empty() ? "" : "\nFunctions of the platform that fail\n" + faultTable(status.faults));
}

std::string statusJson(const DeviceStatus& status) {
    return jsonText(statusObject(status), 2) + "\n";
}

std::string statusJsonLine(const DeviceStatus& status) {
    return jsonText(statusObject(status)) + "\n";
}

} // namespace deskwatch
