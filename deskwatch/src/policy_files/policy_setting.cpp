#include "policy_files/policy_setting.h"

#include <glib.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <stdexcept>

#include "device/plain_text.h"
#include "policy_files/policy_names.h"
#include "provisioning/element_rule.h"
#include "provisioning/provisioning_import.h"
#include "text/suggestion.h"
#include "text/text_table.h"

namespace deskwatch {
namespace {

const PolicyName* policyName(const std::string& name, Naming naming) {
    const auto* const row = std::find_if(policyNames.begin(), policyNames.end(), [&](const PolicyName& candidate) {
        return naming == Naming::Properties ? name == candidate.property || name == candidate.element
                                            : name == candidate.key || (!name.empty() && name == candidate.otherKey);
    });
    return row != policyNames.end() ? row : nullptr;
}

/// The names that a file may have, the present ones first.
std::vector<std::string_view> namesOf(Naming naming) {
    std::vector<std::string_view> names;
    for (const auto former : {false, true}) {
        for (const auto& row : policyNames) {
            names.emplace_back(naming == Naming::Properties ? (former ? row.element : row.property)
                                                            : (former ? row.otherKey : row.key));
        }
    }
    return names;
}

/// Whether a name that no element has stands for nothing that the reader must hear of. The properties of an object are
/// more than those of the policy, so there only what looks like a slip of the pen is told.
bool isLeftOut(const std::string& name, Naming naming) {
    const auto isSame = [&name](const char* other) { return name == other; };
    if (std::any_of(notSent.begin(), notSent.end(), isSame)) {
        return true;
    }
    return naming == Naming::Properties && !isNearPolicyName(name, naming);
}

std::optional<long> numberIn(std::string_view text) {
    const auto number = wholeNumber<long>(text);
    return number && *number >= 0 && *number < 1'000'000'000 ? number : std::nullopt;
}

/// `[days.]hours:minutes:seconds` in seconds.
std::optional<long> secondsIn(std::string_view text) {
    constexpr long perUnit[] = {3600, 60, 1};
    constexpr long perDay = 86400;
    long seconds = 0;
    if (const auto dot = text.find('.'); dot < text.find(':')) {
        const auto days = numberIn(text.substr(0, dot));
        if (!days) {
            return std::nullopt;
        }
        seconds = *days * perDay;
        text.remove_prefix(dot + 1);
    }
    for (const long factor : perUnit) {
        const auto colon = factor == 1 ? text.size() : text.find(':');
        const auto number = colon == std::string_view::npos ? std::nullopt : numberIn(text.substr(0, colon));
        if (!number) {
            return std::nullopt;
        }
        seconds += *number * factor;
        text.remove_prefix(std::min(colon + 1, text.size()));
    }
    return seconds;
}

/// A time in the unit of its element; none when it is not one.
std::optional<long> timeIn(const std::string& text, TimeUnit unit) {
    constexpr long perDay = 86400;
    const auto seconds = secondsIn(text);
    if (!seconds || (unit == TimeUnit::Days && *seconds % perDay != 0)) {
        return std::nullopt;
    }
    return unit == TimeUnit::Days ? *seconds / perDay : *seconds;
}

constexpr char flagWords[] = "True or False";

/// What an element may be in the words of an object's property; empty where it is as in a provisioning document.
std::string legalWords(const PolicyName& name) {
    if (name.unit != TimeUnit::None) {
        return std::string(name.unit == TimeUnit::Days ? "whole days such as 90.00:00:00" : "a time such as 00:15:00") +
               ", or Unlimited";
    }
    const auto* const rule = elementRule(name.element);
    return rule == nullptr || rule->conversion == Conversion::Number ? ""
           : rule->most == 1                                         ? flagWords
                                                                     : "Disable, HandsfreeOnly or Allow";
}

/// A size that is written as `10 MB (10,485,760 bytes)` as a number of bytes.
std::string plainSize(const std::string& text) {
    constexpr std::string_view end = " bytes)";
    const auto open = text.find('(');
    if (open == std::string::npos || text.size() < end.size() || text.substr(text.size() - end.size()) != end) {
        return text;
    }
    auto digits = text.substr(open + 1, text.size() - end.size() - open - 1);
    digits.erase(std::remove(digits.begin(), digits.end(), ','), digits.end());
    return numberIn(digits) ? digits : text;
}

bool isEither(const std::string& text, const char* one, const char* other) {
    return g_ascii_strcasecmp(text.c_str(), one) == 0 || g_ascii_strcasecmp(text.c_str(), other) == 0;
}

ProvisioningElement elementOf(const PolicySetting& setting, const PolicyName& name, Naming naming) {
    ElementWording wording{setting.name, naming == Naming::Properties ? legalWords(name) : "", ""};
    if (setting.isList) {
        return {name.element, "", true, setting.line, wording};
    }
    const auto* const word = std::find_if(valueWords.begin(), valueWords.end(), [&](const ValueWord& row) {
        return g_ascii_strcasecmp(row.word, setting.value.c_str()) == 0;
    });
    std::string value = word != valueWords.end() ? word->value : plainSize(setting.value);
    wording.isIllegal = wording.legalValues == flagWords && !value.empty() && !isEither(setting.value, "True", "False");
    if (naming == Naming::Properties && name.unit != TimeUnit::None && word == valueWords.end() && !value.empty()) {
        const auto time = timeIn(value, name.unit);
        wording.isIllegal = !time;
        value = time ? std::to_string(*time) : "";
    }
    return {name.element, wording.isIllegal ? setting.value : value, false, setting.line, wording};
}

ProvisioningElement unknownElement(const PolicySetting& setting, Naming naming) {
    const std::string reason = naming == Naming::Properties ? "not a property of a policy" : "not a key of a policy";
    return {setting.name,
            setting.value,
            setting.isList,
            setting.line,
            {"", "", reason + didYouMean(setting.name, namesOf(naming))}};
}

} // namespace

bool isPolicyName(const std::string& name, Naming naming) {
    return policyName(name, naming) != nullptr;
}

bool isNearPolicyName(const std::string& name, Naming naming) {
    return nearest(name, namesOf(naming)).has_value();
}

std::string parameterOf(std::string_view element) {
    const auto* const row = std::find_if(policyNames.begin(), policyNames.end(),
                                         [element](const PolicyName& name) { return element == name.element; });
    return row != policyNames.end() ? row->property : "";
}

FilePolicy policyOf(const std::string& file, const std::vector<PolicySetting>& settings, Naming naming) {
    if (settings.size() > mostSettings) {
        throw std::runtime_error(placeIn(file, settings.front().line) + ": " + std::to_string(settings.size()) +
                                 " settings; a policy has at most " + std::to_string(mostSettings));
    }
    FilePolicy policy;
    auto& elements = policy.elements;
    for (const auto& setting : settings) {
        if (naming == Naming::Properties && (setting.name == "Name" || setting.name == "Identity")) {
            policy.name = setting.name == "Name" || policy.name.empty() ? setting.value : policy.name;
        }
        const auto* const name = policyName(setting.name, naming);
        if (setting.name.empty() || (name == nullptr && isLeftOut(setting.name, naming))) {
            continue;
        }
        const auto element = name != nullptr ? elementOf(setting, *name, naming) : unknownElement(setting, naming);
        // an object may have a property under its older name, too
        const bool isThere = std::any_of(elements.begin(), elements.end(), [&](const ProvisioningElement& other) {
            return other.name == element.name && other.value == element.value && other.isList == element.isList;
        });
        if (!isThere) {
            elements.push_back(element);
        }
    }
    return policy;
}

void addPolicy(PolicyFile& content, FilePolicy policy) {
    if (!policy.elements.empty()) {
        content.policies.push_back(std::move(policy));
    }
}

} // namespace deskwatch
