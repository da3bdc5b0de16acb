#include "comparison/policy_comparison.h"

#include <nlohmann/json.hpp>

#include <algorithm>

#include "messages/message_table.h"
#include "rules/TeskPolicyMerge.h"
#include "rules/TeskPolicySettings.h"

namespace deskwatch {
namespace {

using Json = nlohmann::ordered_json;

Json policySetIn(const ProvisioningImport& import) {
    const auto message = Json::parse(import.message);
    return message["param"][0]["policySet"];
}

/// A member's value as the service stores it.
std::int32_t storedValue(const PolicyMember& member, const Json& value) {
    if (member.type == MemberType::Flag) {
        return value.get<bool>() ? 1 : 0;
    }
    const auto number = value.get<std::int32_t>();
    return member.type == MemberType::Mode ? (number != 0 ? 1 : 0) : number;
}

/// Merges the two values of a field, as the service does for two accounts.
Side decidingSide(const PolicyMember& member, std::int32_t first, std::int32_t second) {
    const auto* const row =
        std::find_if(TeskPolicyTable::numbers.begin(), TeskPolicyTable::numbers.end(),
                     [&member](const TeskPolicyNumber& number) { return number.column == member.column; });
    if (member.setting.empty() || first == second || row == TeskPolicyTable::numbers.end()) {
        return Side::None;
    }
    const auto start = TeskPolicyData().*row->field;
    const auto alone = TeskPolicyMerge::mergedValue(row->rule, start, start, first);
    return TeskPolicyMerge::mergedValue(row->rule, start, alone, second) == first ? Side::First : Side::Second;
}

/// The value that the watch makes of the deciding one: without a limit of the attempts it has one of its own.
std::string enforcedValue(const PolicyMember& member, const Json& value) {
    if (member.setting.empty()) {
        return "";
    }
    if (member.name == "maxDevicePasswordFailedAttempts") {
        TeskPolicyData policy;
        policy.maxDevicePasswordFailedAttempts = value.get<std::int32_t>();
        return std::to_string(TeskPolicySettings::of(policy, 0).failedAttempts);
    }
    return value.dump();
}

std::vector<ComparedValue> comparedMembers(const Json& first, const Json& second) {
    std::vector<ComparedValue> members;
    for (const auto& member : policyMembers) {
        const std::string name(member.name);
        const auto& one = first[name];
        const auto& other = second[name];
        const auto side = decidingSide(member, storedValue(member, one), storedValue(member, other));
        members.push_back(
            {name, {one.dump(), other.dump()}, side, enforcedValue(member, side == Side::Second ? other : one)});
    }
    return members;
}

/// Notes what a policy demands and no message carries.
void noteNotCarried(const ProvisioningImport& import, std::size_t side, std::vector<ComparedValue>& values) {
    for (const auto& entry : import.elements) {
        if (entry.fate == Fate::Nothing || !entry.member.empty()) {
            continue;
        }
        const auto& element = entry.element;
        auto found = std::find_if(values.begin(), values.end(),
                                  [&element](const ComparedValue& known) { return known.name == element.name; });
        if (found == values.end()) {
            found = values.insert(values.end(), {element.name, {}, Side::None, ""});
        }
        found->values.at(side) = element.isList
                                     ? Json("a list").dump()
                                     : Json(element.value).dump(-1, ' ', false, Json::error_handler_t::replace);
    }
}

} // namespace

std::size_t PolicyComparison::differences() const {
    const auto isDifferent = [](const ComparedValue& value) { return value.isDifferent(); };
    return static_cast<std::size_t>(std::count_if(members.begin(), members.end(), isDifferent) +
                                    std::count_if(notCarried.begin(), notCarried.end(), isDifferent));
}

PolicyComparison comparePolicies(const ComparedPolicy& first, const ComparedPolicy& second) {
    PolicyComparison comparison;
    comparison.members = comparedMembers(policySetIn(first.import), policySetIn(second.import));
    if (!first.isMessage && !second.isMessage) {
        noteNotCarried(first.import, 0, comparison.notCarried);
        noteNotCarried(second.import, 1, comparison.notCarried);
    }
    return comparison;
}

} // namespace deskwatch
