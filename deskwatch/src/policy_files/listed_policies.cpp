#include <algorithm>
#include <set>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "device/plain_text.h"
#include "policy_files/policy_readers.h"
#include "policy_files/policy_setting.h"
#include "policy_files/setting_text.h"

namespace deskwatch {
namespace {

/// A line of a list: `Name : value` or `Name = value`.
struct ListLine {
    std::string name;
    std::string value;
    /// Where its value begins; 0 when it has no name.
    std::size_t column = 0;
};

ListLine listLine(const std::string& line) {
    const auto mark = line.find_first_of(":=");
    auto name = trimmedText(mark == std::string::npos ? "" : line.substr(0, mark));
    if (!isWord(name)) {
        return {};
    }
    return {std::move(name), trimmedText(line.substr(mark + 1)), mark + 2};
}

/// The values of a list: `{a, b}` or `@("a", "b")`.
PolicySetting settingOf(const ListLine& line, long number) {
    auto value = line.value;
    value.erase(value.find_last_not_of(';') + 1);
    const bool isBraced = value.size() > 1 && value.front() == '{' && value.back() == '}';
    const bool isArray = value.size() > 2 && startsWith(value, "@(") && value.back() == ')';
    if (isBraced || isArray) {
        const std::size_t open = isArray ? 2 : 1;
        const auto inner = trimmedText(value.substr(open, value.size() - open - 1));
        return {line.name, "", !inner.empty(), number};
    }
    value.erase(0, startsWith(value, "$") ? 1 : 0);
    return {line.name, unquoted(value), false, number};
}

/// Splits lists into policies: the next one begins where a name comes again.
class ListReader {
public:
    void take(const std::string& text, long number) {
        const auto line = listLine(text);
        const auto indent = text.find_first_not_of(" \t");
        if (column_ > 0 && indent >= column_ - 1) { // a long value goes on under its column; an empty line adds nothing
            last_.value += trimmedText(text);
        } else if (line.column > 0) {
            finishLine();
            last_ = line;
            column_ = line.column;
            number_ = number;
        }
    }

    std::vector<std::vector<PolicySetting>> end() {
        finishLine();
        policies_.push_back(std::move(settings_));
        return std::move(policies_);
    }

private:
    void finishLine() {
        if (column_ == 0) {
            return;
        }
        if (!names_.insert(last_.name).second) {
            policies_.push_back(std::move(settings_));
            settings_.clear();
            names_ = {last_.name};
        }
        settings_.push_back(settingOf(last_, number_));
        column_ = 0;
    }

    std::vector<std::vector<PolicySetting>> policies_;
    std::vector<PolicySetting> settings_;
    std::set<std::string> names_;
    ListLine last_;
    std::size_t column_ = 0;
    long number_ = 0;
};

/// The lists that are policies, which one name in them tells.
PolicyFile policiesAmong(const std::string& file, const std::vector<std::vector<PolicySetting>>& lists,
                         bool (*isName)(const std::string&, Naming)) {
    PolicyFile content;
    for (const auto& settings : lists) {
        if (std::any_of(settings.begin(), settings.end(),
                        [isName](const PolicySetting& setting) { return isName(setting.name, Naming::Properties); })) {
            addPolicy(content, policyOf(file, settings, Naming::Properties));
        }
    }
    return content;
}

/// The second of two lists without a name is rather the same policy, in which somebody wrote a property twice.
void refuseRepeatedProperty(const std::string& file, const std::vector<FilePolicy>& policies) {
    for (std::size_t next = 1; next < policies.size(); ++next) {
        const auto& before = policies[next - 1].elements;
        for (const auto& element : policies[next].elements) {
            const auto first = std::find_if(before.begin(), before.end(), [&element](const ProvisioningElement& other) {
                return other.name == element.name;
            });
            if (policies[next].name.empty() && first != before.end()) {
                throw std::runtime_error(file + ": " + element.wording.name + " is given twice (lines " +
                                         std::to_string(first->line) + " and " + std::to_string(element.line) + ")");
            }
        }
    }
}

} // namespace

std::optional<PolicyFile> readListedPolicies(const std::string& file, const std::string& text) {
    ListReader reader;
    std::istringstream stream(text);
    long number = 0;
    for (std::string line; std::getline(stream, line);) {
        reader.take(line, ++number);
    }
    const auto lists = reader.end();
    auto content = policiesAmong(file, lists, isPolicyName);
    if (content.policies.empty()) { // a file may have nothing but a misspelt name
        content = policiesAmong(file, lists, isNearPolicyName);
    }
    refuseRepeatedProperty(file, content.policies);
    return content.policies.empty() ? std::nullopt : std::optional(std::move(content));
}

} // namespace deskwatch
