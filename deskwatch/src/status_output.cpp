#include "watch_status.h"

#include "text_table.h"
#include "value_output.h"

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

std::string namedValues(const std::vector<NamedValue>& values) {
    std::vector<std::vector<std::string>> rows;
    rows.reserve(values.size());
    for (const auto& [name, value] : values) {
        rows.push_back({name, valueText(value)});
    }
    return textTable(rows);
}

/// One column per account: a policy has many fields, a watch few accounts.
std::string accountTable(const std::vector<StoredAccount>& accounts) {
    if (accounts.empty()) {
        return "  none\n";
    }
    std::vector<std::vector<std::string>> rows;
    for (std::size_t field = 0; field < accounts.front().size(); ++field) {
        rows.push_back({accounts.front()[field].name});
        for (const auto& account : accounts) {
            rows.back().push_back(valueText(account[field].value));
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

} // namespace

std::string statusTables(const WatchStatus& status) {
    auto keys = status.keys;
    keys.push_back(status.enforcingAccount);
    return "Watch " + status.folder + ", the service " + (status.isServiceRunning ? "runs" : "does not run") +
           "\n\nStored accounts\n" + accountTable(status.accounts) + "\nSettings of the device policy manager\n" +
           namedValues(status.settings) + "\nKeys\n" + namedValues(keys) + "\nLaunch requests\n" +
           screenTable(status.screens);
}

std::string statusJson(const WatchStatus& status) {
    Json object{{"watch", status.folder}, {"serviceRunning", status.isServiceRunning}};
    object["accounts"] = Json::array();
    for (const auto& account : status.accounts) {
        object["accounts"].push_back(asObject(account));
    }
    object["settings"] = asObject(status.settings);
    object["keys"] = asObject(status.keys);
    object["enforcingAccount"] = valueJson(status.enforcingAccount.value);
    object["launches"] = Json::array();
    for (const auto& screen : status.screens) {
        object["launches"].push_back(screenJson(screen));
    }
    return jsonText(object, 2) + "\n";
}

} // namespace deskwatch
