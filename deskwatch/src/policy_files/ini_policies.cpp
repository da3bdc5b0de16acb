#include <algorithm>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "policy_files/policy_readers.h"
#include "policy_files/policy_setting.h"
#include "policy_files/setting_text.h"

namespace deskwatch {
namespace {

struct Section {
    std::string name;
    std::vector<PolicySetting> settings;
};

/// A value without the comment after it, and without its quotation marks.
std::string iniValue(const std::string& text) {
    const auto value = trimmedText(text);
    const bool isQuoted = !value.empty() && (value[0] == '"' || value[0] == '\'');
    const auto end = isQuoted ? value.find(value[0], 1) : std::string::npos;
    return end != std::string::npos ? value.substr(1, end - 1) : trimmedText(value.substr(0, value.find(';')));
}

std::vector<Section> sectionsOf(const std::string& text) {
    std::vector<Section> sections(1);
    std::istringstream stream(text);
    long number = 0;
    for (std::string line; std::getline(stream, line);) {
        ++number;
        line = trimmedText(line);
        if (line.empty() || line[0] == ';' || line[0] == '#') {
            continue;
        }
        const auto equals = line.find('=');
        if (line.front() == '[' && line.find(']') != std::string::npos) {
            sections.push_back({trimmedText(line.substr(1, line.find(']') - 1)), {}});
        } else if (equals != std::string::npos) {
            sections.back().settings.push_back(
                {trimmedText(line.substr(0, equals)), iniValue(line.substr(equals + 1)), false, number});
        }
    }
    return sections;
}

/// What a section leaves out is as in the default section.
void inherit(Section& section, const Section& base) {
    for (const auto& setting : base.settings) {
        const bool isSet = std::any_of(section.settings.begin(), section.settings.end(),
                                       [&setting](const PolicySetting& own) { return own.name == setting.name; });
        if (!isSet) {
            section.settings.push_back(setting);
        }
    }
}

} // namespace

std::optional<PolicyFile> readIniPolicies(const std::string& file, const std::string& text) {
    auto sections = sectionsOf(text);
    const bool isOurs = std::any_of(sections.begin(), sections.end(), [](const Section& section) {
        return std::any_of(section.settings.begin(), section.settings.end(),
                           [](const PolicySetting& setting) { return isPolicyName(setting.name, Naming::Keys); });
    });
    const auto found = std::find_if(sections.begin(), sections.end(),
                                    [](const Section& section) { return section.name == "default"; });
    if (!isOurs && found != sections.end()) {
        throw std::runtime_error(file + ": no section has a key of a policy, such as devpwenabled");
    }
    if (!isOurs) {
        return std::nullopt;
    }
    const auto base = found != sections.end() ? *found : Section{};
    if (sections.size() > mostSections) {
        throw std::runtime_error(file + ": " + std::to_string(sections.size()) + " sections; at most " +
                                 std::to_string(mostSections) + " are read");
    }
    policyOf(file, base.settings, Naming::Keys); // refuses too many before they are handed on
    PolicyFile content;
    for (auto& section : sections) {
        policyOf(file, section.settings, Naming::Keys);
        inherit(section, section.name.empty() ? Section{} : base);
        auto policy = policyOf(file, section.settings, Naming::Keys);
        policy.name = section.name;
        addPolicy(content, std::move(policy));
    }
    return content;
}

} // namespace deskwatch
