#include <algorithm>
#include <cctype>
#include <vector>

#include "messages/located_json.h"
#include "messages/message_table.h"
#include "policy_files/policy_readers.h"
#include "policy_files/policy_setting.h"
#include "policy_files/setting_text.h"
#include "provisioning/element_rule.h"
#include "provisioning/provisioning_import.h"
#include "text/json_input.h"

namespace deskwatch {
namespace {

using Kind = LocatedJson::Kind;

std::string scalarText(const LocatedJson& value) {
    return value.kind == Kind::Flag ? (value.flag ? "True" : "False") : trimmedText(value.text);
}

/// A number of PowerShell 7, which writes a whole number of seconds with a fraction of 0.
std::string withoutFraction(const std::string& text) {
    const auto point = text.find(".0");
    return point != std::string::npos && point + 2 == text.size() ? text.substr(0, point) : text;
}

/// An object stands for a limit that may be unlimited, a time, or a word of an enumeration.
PolicySetting settingOfMember(const LocatedJson::Member& member) {
    const auto line = static_cast<long>(member.value.line);
    const auto* value = &member.value;
    while (value->kind == Kind::Object) {
        if (const auto* const unlimited = value->find("IsUnlimited"); unlimited != nullptr && unlimited->flag) {
            return {member.name, "Unlimited", false, line};
        }
        if (const auto* const seconds = value->find("TotalSeconds")) {
            return {member.name, "0:0:" + withoutFraction(seconds->text), false, line};
        }
        const auto* const inner = value->find("Value") != nullptr ? value->find("Value") : value->find("value");
        if (inner == nullptr) {
            return {member.name, "", true, line};
        }
        value = inner;
    }
    return value->kind == Kind::Array ? PolicySetting{member.name, "", !value->elements.empty(), line}
                                      : PolicySetting{member.name, scalarText(*value), false, line};
}

/// The policy that an object is by its names; one without a known name is none.
void addObject(PolicyFile& content, const std::string& file, const LocatedJson& object, Naming naming) {
    std::vector<PolicySetting> settings;
    bool isPolicy = false;
    for (const auto& member : object.members) {
        settings.push_back(settingOfMember(member));
        isPolicy = isPolicy || isPolicyName(member.name, naming);
    }
    if (isPolicy) {
        addPolicy(content, policyOf(file, settings, naming));
    }
}

/// What a domain or a user has of its own is laid over the server's default policy, which is not here.
void remarkOnPart(PolicyFile& content, const LocatedJson& object) {
    if (!content.policies.empty() && object.find("devpwenabled") == nullptr) {
        content.remarks.emplace_back(
            "holds only a part of a policy; what the server's default policy adds is not here");
    }
}

/// What a flag or a mode of a message is as the number of its element; none when it is neither.
std::optional<int> plainValue(const PolicyMember& member, const LocatedJson& value) {
    if (member.type == MemberType::Flag && value.kind == Kind::Flag) {
        return value.flag ? elementRule(member.element)->most : 0;
    }
    const bool isMode = member.type == MemberType::Mode && value.kind == Kind::Integer &&
                        std::find(passwordModes.begin(), passwordModes.end(), value.integer) != passwordModes.end();
    return isMode ? std::optional((value.integer & alphanumericMode) != 0 ? 1 : 0) : std::nullopt;
}

std::string asWritten(const LocatedJson& value) {
    return value.kind == Kind::Text ? value.text : value.shown();
}

/// The value of a member as the element has it that the member stands for. A flag that is left out forbids.
std::string elementValue(const PolicyMember& member, const LocatedJson* value) {
    if (value == nullptr) {
        return member.type == MemberType::Flag ? "0" : "";
    }
    if (member.type != MemberType::Number) {
        const auto plain = plainValue(member, *value);
        return plain ? std::to_string(*plain) : "";
    }
    const bool isNoLimit = value->kind == Kind::Integer && value->integer == 0;
    return isNoLimit && elementRule(member.element)->least > 0 ? ""
           : value->kind == Kind::Integer                      ? value->text
                                                               : asWritten(*value);
}

const char* legalWords(MemberType type) {
    return type == MemberType::Flag ? "true or false" : "0, 32, 64 or 96";
}

FilePolicy policyOfAccount(const LocatedJson& account, const LocatedJson& policySet) {
    FilePolicy policy;
    policy.isMessage = true;
    const auto* const name = account.find("accountName");
    policy.name = name != nullptr ? name->text : "";
    for (const auto& member : policyMembers) {
        const std::string memberName(member.name);
        const auto* const value = policySet.find(memberName);
        const auto line = static_cast<long>(value != nullptr ? value->line : policySet.line);
        const bool isIllegal = value != nullptr && member.type != MemberType::Number && !plainValue(member, *value);
        policy.elements.push_back({std::string(member.element),
                                   isIllegal ? asWritten(*value) : elementValue(member, value),
                                   false,
                                   line,
                                   {memberName, isIllegal ? legalWords(member.type) : "", "", isIllegal}});
    }
    return policy;
}

PolicyFile readMessagePolicies(const LocatedJson& root, const std::string& id) {
    PolicyFile content;
    const auto* const kind = std::find_if(messageKinds.begin(), messageKinds.end(),
                                          [&id](const MessageKind& candidate) { return candidate.id == id; });
    if (id == remoteWipeKind) {
        content.notices.push_back({ServerNotice::Kind::Wipe, "", static_cast<long>(root.line)});
    }
    const auto* const holder =
        kind == messageKinds.end() || kind->holder.empty() ? &root : root.find(std::string(kind->holder));
    const auto* const accounts =
        kind == messageKinds.end() || holder == nullptr ? nullptr : holder->find(std::string(kind->accounts));
    for (const auto& account : accounts != nullptr ? accounts->elements : std::vector<LocatedJson>{}) {
        const auto* const policySet = account.find("policySet");
        if (policySet != nullptr && policySet->kind == Kind::Object) {
            content.policies.push_back(policyOfAccount(account, *policySet));
        }
    }
    return content;
}

/// Whether a text can be JSON at all; the sections of an ini file begin as an array does.
bool beginsAsJson(const std::string& text) {
    const auto start = trimmedText(text.substr(0, text.find('{') + 1));
    return !start.empty() && start.back() == '{' &&
           std::all_of(start.begin(), start.end() - 1,
                       [](unsigned char character) { return character == '[' || std::isspace(character) != 0; });
}

} // namespace

std::optional<PolicyFile> readJsonPolicies(const std::string& file, const std::string& text) {
    if (!beginsAsJson(text)) {
        return std::nullopt;
    }
    requireJson(file, text, "");
    const auto root = locatedJson(text);
    if (const auto* const id = root.find("msgId")) {
        return readMessagePolicies(root, id->text);
    }
    PolicyFile content;
    const auto* const data = root.find("data");
    const auto& keyed = data != nullptr && data->kind == Kind::Object ? *data : root;
    addObject(content, file, keyed, Naming::Keys);
    remarkOnPart(content, keyed);
    for (const auto& element : root.elements) {
        addObject(content, file, element, Naming::Properties);
    }
    addObject(content, file, root, Naming::Properties);
    return content.policies.empty() ? std::nullopt : std::optional(content);
}

} // namespace deskwatch
