#include <nlohmann/json.hpp>

#include "explain/forecast.h"
#include "rules/TeskPolicyTable.h"
#include "text/text_table.h"
#include "text/value_output.h"
#include "text/value_text.h"

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
        const int before = forecast.mergedBefore.*number.field;
        const int after = forecast.mergedAfter.*number.field;
        if (before != after) {
            rows.push_back({number.column, std::to_string(before), std::to_string(after)});
        }
    }
    return changeTable(std::move(rows));
}

std::string settingTable(const Forecast& forecast) {
    Rows rows;
    for (std::size_t setting = 0; setting < deviceSettings.size(); ++setting) {
        const auto& before = forecast.settingsBefore[setting];
        const auto& after = forecast.settingsAfter[setting];
        if (before != after) {
            rows.push_back({deviceSettings[setting].name, numberText(before), numberText(after)});
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

std::string screenTable(const Forecast& forecast) {
    Rows rows;
    for (const auto& screen : forecast.screens) {
        rows.push_back({screen.application, screen.reason, "(" + screen.source + ")"});
    }
    return rows.empty() ? "  none\n" : textTable(rows);
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
            merged[row.column] = {{"before", forecast.mergedBefore.*row.field},
                                  {"after", forecast.mergedAfter.*row.field}};
        }
    }
    return merged;
}

Json settingsJson(const Forecast& forecast) {
    Json settings = Json::object();
    for (std::size_t setting = 0; setting < deviceSettings.size(); ++setting) {
        settings[deviceSettings[setting].name] = {{"before", numberJson(forecast.settingsBefore[setting])},
                                                  {"after", numberJson(forecast.settingsAfter[setting])}};
    }
    return settings;
}

} // namespace

std::string forecastText(const Forecast& forecast) {
    return "Accounts that would be stored\n" + accountTable(forecast) + "\nMerged policy\n" + mergedTable(forecast) +
           "\nSettings of the device policy manager\n" + settingTable(forecast) + "\nScreens that would open\n" +
           screenTable(forecast) + remarkLines(forecast);
}

std::string forecastJson(const Forecast& forecast) {
    Json object{{"accounts", Json::array()}};
    for (const auto& account : forecast.accounts) {
        object["accounts"].push_back({{"account", account.account}, {"name", account.name}, {"new", account.isNew}});
    }
    object["merged"] = mergedJson(forecast);
    object["settings"] = settingsJson(forecast);
    object["screens"] = Json::array();
    for (const auto& screen : forecast.screens) {
        object["screens"].push_back(
            {{"application", screen.application}, {"source", screen.source}, {"reason", screen.reason}});
    }
    object["remarks"] = forecast.remarks;
    return object.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace deskwatch
