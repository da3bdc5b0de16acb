#include <nlohmann/json.hpp>

#include "comparison/policy_comparison.h"
#include "text/text_table.h"
#include "text/value_output.h"

namespace deskwatch {
namespace {

using Json = nlohmann::ordered_json;
using Rows = std::vector<std::vector<std::string>>;

std::string shownValue(const std::string& json) {
    return json.empty() ? "-" : json;
}

/// What a watch with both policies goes by, and whose value that is.
std::string together(const ComparedValue& value) {
    const char* const side = value.decides == Side::None ? "" : value.decides == Side::First ? " (first)" : " (second)";
    return shownValue(value.together) + side;
}

const char* markOfDifference(const ComparedValue& value) {
    return value.isDifferent() ? "*" : "";
}

std::string nameOf(const ComparedPolicy& policy) {
    return policy.name.empty() ? policy.file : policy.file + ", \"" + policy.name + "\"";
}

Json policyJson(const ComparedPolicy& policy) {
    return {{"file", policy.file}, {"policy", policy.name}};
}

Json sideJson(Side side) {
    return side == Side::None ? Json(nullptr) : Json(side == Side::First ? "first" : "second");
}

Json valueOrNull(const std::string& json) {
    return json.empty() ? Json(nullptr) : Json::parse(json);
}

} // namespace

std::string comparisonText(const ComparedPolicy& first, const ComparedPolicy& second,
                           const PolicyComparison& comparison) {
    auto text = textTable({{"first", nameOf(first)}, {"second", nameOf(second)}}) + "\n";
    Rows rows{{"", "member", "first", "second", "a watch with both"}};
    for (const auto& member : comparison.members) {
        rows.push_back({markOfDifference(member), member.name, member.values[0], member.values[1], together(member)});
    }
    text += textTable(rows);
    if (!comparison.notCarried.empty()) {
        Rows others{{"", "element that no message carries", "first", "second"}};
        for (const auto& element : comparison.notCarried) {
            others.push_back({markOfDifference(element), element.name, shownValue(element.values[0]),
                              shownValue(element.values[1])});
        }
        text += "\n" + textTable(others);
    }
    return text;
}

std::string comparisonJson(const ComparedPolicy& first, const ComparedPolicy& second,
                           const PolicyComparison& comparison) {
    Json object{{"first", policyJson(first)},
                {"second", policyJson(second)},
                {"differences", comparison.differences()},
                {"members", Json::array()},
                {"notCarried", Json::array()}};
    for (const auto& member : comparison.members) {
        object["members"].push_back({{"member", member.name},
                                     {"first", valueOrNull(member.values[0])},
                                     {"second", valueOrNull(member.values[1])},
                                     {"different", member.isDifferent()},
                                     {"decides", sideJson(member.decides)},
                                     {"together", valueOrNull(member.together)}});
    }
    for (const auto& element : comparison.notCarried) {
        object["notCarried"].push_back({{"element", element.name},
                                        {"first", valueOrNull(element.values[0])},
                                        {"second", valueOrNull(element.values[1])},
                                        {"different", element.isDifferent()}});
    }
    return jsonText(object, 2) + "\n";
}

} // namespace deskwatch
