#include "watch_status.h"

#include "text_table.h"

#include <nlohmann/json.hpp>

namespace deskwatch {
namespace {

using Json = nlohmann::ordered_json;

std::string asText(const Value& value) {
    if (const int* number = std::get_if<int>(&value)) {
        return std::to_string(*number);
    }
    const auto* text = std::get_if<std::string>(&value);
    return text != nullptr ? *text : "-";
}

Json asJson(const Value& value) {
    if (const int* number = std::get_if<int>(&value)) {
        return *number;
    }
    const auto* text = std::get_if<std::string>(&value);
    return text != nullptr ? Json(*text) : Json(nullptr);
}

Json asObject(const std::vector<NamedValue>& values) {
    Json object = Json::object();
    for (const auto& [name, value] : values) {
        object[name] = asJson(value);
    }
    return object;
}

std::string namedValues(const std::vector<NamedValue>& values) {
    std::vector<std::vector<std::string>> rows;
    rows.reserve(values.size());
    for (const auto& [name, value] : values) {
        rows.push_back({name, asText(value)});
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
            rows.back().push_back(asText(account[field].value));
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
    object["enforcingAccount"] = asJson(status.enforcingAccount.value);
    object["launches"] = Json::array();
    for (const auto& screen : status.screens) {
        object["launches"].push_back(screenJson(screen));
    }
    return object.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace deskwatch
