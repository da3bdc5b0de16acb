#include "messages/message.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <sstream>

namespace deskwatch {
namespace {

using Json = nlohmann::json;

/// The object at the beginning of a text; a null when there is none.
Json firstObject(const std::string& text) {
    std::istringstream stream(text);
    Json root;
    try {
        stream >> root;
    } catch (const Json::exception&) {
        return {};
    }
    return root;
}

Json member(const Json& object, std::string_view name) {
    const auto found = object.is_object() ? object.find(name) : object.end();
    return found != object.end() ? *found : Json();
}

std::string textOf(const Json& value) {
    return value.is_string() ? value.get<std::string>() : "";
}

std::int32_t numberOf(const Json& value) {
    if (value.is_boolean()) {
        return value.get<bool>() ? 1 : 0;
    }
    if (value.is_number_float()) {
        constexpr double limit = 9e18; // what is beyond names no account
        const auto number = value.get<double>();
        return number > -limit && number < limit ? static_cast<std::int32_t>(static_cast<std::int64_t>(number)) : 0;
    }
    return value.is_number() ? static_cast<std::int32_t>(value.get<std::int64_t>()) : 0;
}

/// As the service stores it: what is missing counts as false or 0.
std::vector<DemandedColumn> columnsOf(const Json& policySet) {
    constexpr std::uint32_t alphanumeric = 64;
    constexpr std::uint32_t ignored = 32;
    std::vector<DemandedColumn> columns;
    for (const auto& row : policyMembers) {
        const auto value = member(policySet, row.name);
        const bool isFlag = row.type == MemberType::Flag;
        if (!value.is_null() && !(isFlag ? value.is_boolean() : value.is_number_integer())) {
            continue;
        }
        const auto number = numberOf(value);
        const bool isAlphanumeric = (static_cast<std::uint32_t>(number) & ~ignored) == alphanumeric;
        columns.push_back({row.column, row.type != MemberType::Mode ? number : isAlphanumeric ? 1 : 0});
    }
    return columns;
}

} // namespace

Message readMessage(const std::string& text) {
    const Json root = firstObject(text);
    const std::string id = textOf(member(root, "msgId"));
    const auto* const kind = std::find_if(messageKinds.begin(), messageKinds.end(),
                                          [&id](const MessageKind& candidate) { return candidate.id == id; });
    Message message;
    if (kind == messageKinds.end()) {
        return message;
    }
    message.kind = kind;
    const Json accounts = member(kind->holder.empty() ? root : member(root, kind->holder), kind->accounts);
    message.hasAccounts = accounts.is_array();
    for (const auto& account : message.hasAccounts ? accounts : Json::array()) {
        if (account.is_object()) {
            const auto policySet = member(account, "policySet");
            message.accounts.push_back({numberOf(member(account, kind->accountId)),
                                        textOf(member(account, "accountName")), policySet.is_object(),
                                        columnsOf(policySet)});
        }
    }
    return message;
}

bool holdsPolicy(const StoredAccount& stored, const MessageAccount& account) {
    return std::all_of(stored.begin(), stored.end(), [&account](const NamedValue& column) {
        return std::all_of(account.columns.begin(), account.columns.end(), [&column](const DemandedColumn& demanded) {
            return column.name != demanded.name || column.value == Value(demanded.value);
        });
    });
}

} // namespace deskwatch
