#include <nlohmann/json.hpp>

#include "forecast/forecast.h"
#include "rules/TeskPolicyTable.h"
#include "text/text_table.h"
#include "text/value_output.h"
#include "text/value_words.h"

namespace deskwatch {
namespace {

using Json = nlohmann::ordered_json;
using Rows = std::vector<std::vector<std::string>>;

std::string changeTable(Rows rows) {
    if (rows.empty()) {
        return "  no change\n";
    }
    rows.insert(rows.begin(), {"", "before", "after"});
    return textTable(rows);
}

std::string mergedTable(const Forecast& forecast) {
    Rows rows;
    for (const auto& number : TeskPolicyTable::numbers) {
        const int before = forecast.before.merged.*number.field;
        const int after = forecast.after.merged.*number.field;
        if (before != after) {
            rows.push_back({number.column, std::to_string(before), std::to_string(after)});
        }
    }
    return changeTable(std::move(rows));
}

std::string settingTable(const Forecast& forecast) {
    Rows rows;
    for (std::size_t setting = 0; setting < deviceSettings.size(); ++setting) {
        const auto& before = forecast.before.settings[setting];
        const auto& after = forecast.after.settings[setting];
        if (before != after) {
            const auto* const name = deviceSettings[setting].name;
            rows.push_back({name, wordedNumber(name, before), wordedNumber(name, after)});
        }
    }
    return changeTable(std::move(rows));
}

std::string accountTable(const Forecast& forecast) {
    Rows rows;
    for (const auto& account : forecast.accounts) {
        rows.push_back({std::to_string(account.account), account.name, account.isNew ? "new" : "replaced"});
    }
    return rows.empty() ? "  no change\n" : textTable(rows);
}

std::string keyTable(const Forecast& forecast) {
    Rows rows;
    for (std::size_t key = 0; key < forecast.before.keys.size(); ++key) {
        const auto& [name, before] = forecast.before.keys[key];
        const auto& after = forecast.after.keys[key].value;
        if (before != after) {
            rows.push_back({name, wordedValue(name, before), wordedValue(name, after)});
        }
    }
    return changeTable(std::move(rows));
}

std::string screenList(const Forecast& forecast) {
    std::string text;
    for (const auto& screen : forecast.screens) {
        text += textTable({{screen.launch.application, screen.reason, "(" + screen.source + ")"}});
        Rows rows;
        for (const auto& [key, value] : screen.launch.extraData) {
            rows.push_back({"  " + key, value});
        }
        text += textTable(rows);
    }
    return text.empty() ? "  none\n" : text;
}

std::string remarkLines(const Forecast& forecast) {
    Rows rows;
    for (const auto& remark : forecast.remarks) {
        rows.push_back({"- " + remark});
    }
    return rows.empty() ? "" : "\nRemarks\n" + textTable(rows);
}

Json mergedJson(const Forecast& forecast) {
    Json merged = Json::object();
    for (const auto& row : TeskPolicyTable::numbers) {
        if (row.rule != TeskMergeRule::NotMerged) {
            merged[row.column] = {{"before", forecast.before.merged.*row.field},
                                  {"after", forecast.after.merged.*row.field}};
        }
    }
    return merged;
}

Json settingsJson(const Forecast& forecast) {
    Json settings = Json::object();
    for (std::size_t setting = 0; setting < deviceSettings.size(); ++setting) {
        settings[deviceSettings[setting].name] = {{"before", numberJson(forecast.before.settings[setting])},
                                                  {"after", numberJson(forecast.after.settings[setting])}};
    }
    return settings;
}

Json keysJson(const Forecast& forecast) {
    Json keys = Json::object();
    for (std::size_t key = 0; key < forecast.before.keys.size(); ++key) {
        keys[forecast.before.keys[key].name] = {{"before", valueJson(forecast.before.keys[key].value)},
                                                {"after", valueJson(forecast.after.keys[key].value)}};
    }
    return keys;
}

Json screenJson(const ScreenForecast& screen) {
    Json extraData = Json::object();
    for (const auto& [key, value] : screen.launch.extraData) {
        extraData[key] = value;
    }
    return {{"application", screen.launch.application},
            {"source", screen.source},
            {"reason", screen.reason},
            {"extraData", extraData}};
}

} // namespace

std::string forecastText(const Forecast& forecast) {
    return "Accounts that would be stored\n" + accountTable(forecast) + "\nMerged policy\n" + mergedTable(forecast) +
           "\nSettings of the device policy manager\n" + settingTable(forecast) + "\nKeys\n" + keyTable(forecast) +
           "\nScreens that would open\n" + screenList(forecast) + remarkLines(forecast);
}

std::string forecastJson(const Forecast& forecast) {
    Json object{{"accounts", Json::array()}};
    for (const auto& account : forecast.accounts) {
        object["accounts"].push_back({{"account", account.account}, {"name", account.name}, {"new", account.isNew}});
    }
    object["merged"] = mergedJson(forecast);
    object["settings"] = settingsJson(forecast);
    object["keys"] = keysJson(forecast);
    object["screens"] = Json::array();
    for (const auto& screen : forecast.screens) {
        object["screens"].push_back(screenJson(screen));
    }
    object["remarks"] = forecast.remarks;
    return jsonText(object, 2) + "\n";
}

} // namespace deskwatch
