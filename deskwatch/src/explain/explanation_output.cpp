#include <nlohmann/json.hpp>

#include <algorithm>

#include "explain/explanation.h"
#include "text/text_table.h"
#include "text/value_output.h"
#include "text/value_text.h"
#include "text/value_words.h"

namespace deskwatch {
namespace {

using Json = nlohmann::ordered_json;
using Rows = std::vector<std::vector<std::string>>;

std::vector<std::string> numbers(const std::vector<int>& values) {
    std::vector<std::string> texts;
    std::transform(values.begin(), values.end(), std::back_inserter(texts),
                   [](int value) { return std::to_string(value); });
    return texts;
}

std::vector<int> losers(const FieldExplanation& field) {
    std::vector<int> accounts;
    for (const auto& share : field.accounts) {
        if (share.standing == Standing::Loses) {
            accounts.push_back(share.account);
        }
    }
    return accounts;
}

std::string accountLines(const Explanation& explanation) {
    Rows rows;
    for (const auto& [id, name] : explanation.accounts) {
        rows.push_back({std::to_string(id), name});
    }
    return rows.empty() ? "  none\n" : textTable(rows);
}

std::string fieldTable(const Explanation& explanation) {
    Rows rows{{"field"}};
    for (const auto& [id, name] : explanation.accounts) {
        rows.front().push_back(std::to_string(id));
    }
    const std::vector<std::string> headings{"merged", "winner", "losers", "rule"};
    rows.front().insert(rows.front().end(), headings.begin(), headings.end());
    for (const auto& field : explanation.fields) {
        std::vector<std::string> row{field.field};
        for (const auto& share : field.accounts) {
            row.push_back(std::to_string(share.value));
        }
        row.push_back(std::to_string(field.merged));
        row.push_back(numberText(field.winner));
        row.push_back(joined(numbers(losers(field)), " "));
        row.emplace_back(field.rule);
        rows.push_back(std::move(row));
    }
    return textTable(rows);
}

std::vector<std::string> fieldsOf(const Explanation& explanation, std::size_t setting) {
    std::vector<std::string> names;
    for (const auto& field : explanation.fields) {
        if (field.setting == setting) {
            names.emplace_back(field.field);
        }
    }
    return names;
}

std::string settingTable(const Explanation& explanation) {
    Rows rows{{"setting", "demanded", "now", "decided by", ""}};
    for (std::size_t setting = 0; setting < deviceSettings.size(); ++setting) {
        const auto* const name = deviceSettings[setting].name;
        rows.push_back({name, wordedNumber(name, explanation.written[setting]),
                        wordedNumber(name, explanation.now[setting]), joined(fieldsOf(explanation, setting), ", "),
                        explanation.remarks[setting]});
    }
    return textTable(rows);
}

std::string scoreTable(const Explanation& explanation) {
    Rows rows;
    for (const auto& [account, score] : explanation.scores) {
        const std::string text = score ? "score " + std::to_string(*score) : "requires no password";
        rows.push_back({std::to_string(account), text, account == explanation.enforcingAccount ? "enforces it" : ""});
    }
    return textTable(rows);
}

std::string passwordText(const Explanation& explanation) {
    if (explanation.enforcingAccount == 0) {
        return "  no account requires one\n";
    }
    return scoreTable(explanation) +
           "  The account with the highest score enforces it; of equal scores, the later account. Score: the minimum\n"
           "  length, plus 1 if simple passwords are forbidden, plus 16 and the kinds of characters if it is "
           "alphanumeric.\n";
}

std::string noteLines(const Explanation& explanation) {
    std::string text;
    for (const auto& note : explanation.notes) {
        text += std::string("  - ") + note.text + " (account " + joined(numbers(note.accounts), ", ") + ")\n";
    }
    return text.empty() ? "  nothing\n" : text;
}

const char* standingText(Standing standing) {
    switch (standing) {
    case Standing::Wins:
        return "wins";
    case Standing::Loses:
        return "loses";
    case Standing::Agrees:
        break;
    }
    return "agrees";
}

Json fieldJson(const Explanation& explanation, const FieldExplanation& field) {
    Json accounts = Json::array();
    for (const auto& share : field.accounts) {
        accounts.push_back(
            {{"account", share.account}, {"value", share.value}, {"standing", standingText(share.standing)}});
    }
    Json object{{"field", field.field},    {"rule", field.rule},
                {"accounts", accounts},    {"winner", numberJson(field.winner)},
                {"losers", losers(field)}, {"merged", field.merged},
                {"setting", nullptr},      {"demanded", nullptr},
                {"now", nullptr}};
    if (field.setting) {
        object["setting"] = deviceSettings[*field.setting].name;
        object["demanded"] = numberJson(explanation.written[*field.setting]);
        object["now"] = numberJson(explanation.now[*field.setting]);
    }
    return object;
}

Json passwordJson(const Explanation& explanation) {
    Json scores = Json::array();
    for (const auto& [account, score] : explanation.scores) {
        scores.push_back({{"account", account}, {"score", score ? Json(*score) : Json(nullptr)}});
    }
    return {{"enforcingAccount", explanation.enforcingAccount}, {"scores", scores}};
}

Json explanationObject(const Explanation& explanation) {
    Json object{{"accounts", Json::array()}, {"fields", Json::array()}, {"settings", Json::object()}};
    for (const auto& [id, name] : explanation.accounts) {
        object["accounts"].push_back({{"account", id}, {"name", name}});
    }
    for (const auto& field : explanation.fields) {
        object["fields"].push_back(fieldJson(explanation, field));
    }
    for (std::size_t setting = 0; setting < deviceSettings.size(); ++setting) {
        object["settings"][deviceSettings[setting].name] = {{"demanded", numberJson(explanation.written[setting])},
                                                            {"now", numberJson(explanation.now[setting])},
                                                            {"remark", explanation.remarks[setting]}};
    }
    object["password"] = passwordJson(explanation);
    object["notes"] = Json::array();
    for (const auto& note : explanation.notes) {
        object["notes"].push_back({{"accounts", note.accounts}, {"text", note.text}});
    }
    return object;
}

} // namespace

std::string explanationText(const Explanation& explanation) {
    return "Stored accounts\n" + accountLines(explanation) + "\nMerged fields\n" + fieldTable(explanation) +
           "\nSettings of the device policy manager\n" + settingTable(explanation) + "\nPassword\n" +
           passwordText(explanation) + "\nWorth knowing\n" + noteLines(explanation);
}

std::string explanationJson(const Explanation& explanation) {
    return jsonText(explanationObject(explanation), 2) + "\n";
}

std::string explanationJsonLine(const Explanation& explanation) {
    return jsonText(explanationObject(explanation)) + "\n";
}

} // namespace deskwatch
