#include "messages/message_schema.h"

#include <nlohmann/json.hpp>

#include <limits>

namespace deskwatch {
namespace {

using Json = nlohmann::ordered_json;

/// An object with one member. The library's braces would make an array of two texts.
Json single(const char* name, const Json& value) {
    Json object = Json::object();
    object[name] = value;
    return object;
}

Json described(Json schema, std::string_view words) {
    schema["description"] = words;
    return schema;
}

/// An object with these members and no others, as far as the service is not more tolerant.
Json objectSchema(Json members, Json required, Strictness strictness) {
    Json object = single("type", "object");
    object["properties"] = std::move(members);
    object["required"] = std::move(required);
    if (strictness == Strictness::Strict) {
        object["additionalProperties"] = false;
    }
    return object;
}

Json valueSchema(const PolicyMember& member) {
    switch (member.type) {
    case MemberType::Flag:
        return single("type", "boolean");
    case MemberType::Mode:
        return single("enum", passwordModes);
    case MemberType::Number:
        break;
    }
    if (member.least > 1) {
        const Json range = Json::object({{"minimum", member.least}, {"maximum", member.most}});
        return Json::object({{"type", "integer"}, {"anyOf", Json::array({single("const", 0), range})}});
    }
    return Json::object({{"type", "integer"}, {"minimum", 0}, {"maximum", member.most}});
}

Json policySetSchema(Strictness strictness) {
    const bool isStrict = strictness == Strictness::Strict;
    Json schema{{"title", "Policy set"},
                {"description", isStrict ? "What an account's server demands. A member that is left out counts as 0 or "
                                           "false, so a missing allow... member forbids."
                                         : "What the service takes: any values. One of another type counts as 0 or "
                                           "false."}};
    Json members = Json::object();
    Json names = Json::array();
    for (const auto& member : policyMembers) {
        members[std::string(member.name)] = described(isStrict ? valueSchema(member) : Json::object(), member.words);
        names.push_back(member.name);
    }
    schema.update(objectSchema(std::move(members), isStrict ? names : Json::array(), strictness));
    return schema;
}

Json text(std::string_view words) {
    return described(single("type", "string"), words);
}

Json accountSchema(const MessageKind& kind, Strictness strictness) {
    Json members = Json::object();
    Json required = Json::array({kind.accountId});
    members[std::string(kind.accountId)] = described(
        Json::object({{"type", "integer"}, {"minimum", 1}, {"maximum", std::numeric_limits<std::int32_t>::max()}}),
        "The account's id, from 1");
    if (strictness == Strictness::Strict) {
        members["accountName"] = text("The account's name, an e-mail address; shown in the popup");
        required.push_back("accountName");
        if (kind.hasDisplayName) {
            members["displayName"] = text("The account's other name; stored");
            required.push_back("displayName");
        }
        if (kind.needsPolicySet) {
            required.push_back("policySet");
        }
    }
    members["policySet"] = single("$ref", "#/$defs/policySet");
    return objectSchema(std::move(members), std::move(required), strictness);
}

Json accountsSchema(const MessageKind& kind, Strictness strictness) {
    return {{"type", "array"},
            {"description", kind.accounts == "accountId" ? "The accounts, despite the member's name" : "The accounts"},
            {"items", accountSchema(kind, strictness)}};
}

Json messageSchema(const MessageKind& kind, Strictness strictness) {
    Json members = single("msgId", single("const", kind.id));
    Json required = Json::array({"msgId"});
    if (strictness == Strictness::Strict) {
        members["seqId"] = described(single("type", "integer"), "The sender's own number; not read");
    }
    if (kind.accounts.empty()) {
        if (strictness == Strictness::Strict) {
            members["param"] = described(single("type", "object"), "Not read");
        }
        return objectSchema(std::move(members), std::move(required), strictness);
    }
    const Json accounts = single(std::string(kind.accounts).c_str(), accountsSchema(kind, strictness));
    if (kind.holder.empty()) {
        members.update(accounts);
        required.push_back(kind.accounts);
    } else {
        members[std::string(kind.holder)] = objectSchema(accounts, Json::array({kind.accounts}), strictness);
        required.push_back(kind.holder);
    }
    Json message = objectSchema(std::move(members), std::move(required), strictness);
    message["$defs"] = single("policySet", policySetSchema(strictness));
    return message;
}

SchemaFile schemaFile(const std::string& name, const Json& head, const Json& body) {
    Json schema{{"$schema", "https://json-schema.org/draft/2020-12/schema"}, {"$id", name}};
    schema.update(head);
    schema.update(body);
    return {name, schema.dump(2) + "\n"};
}

} // namespace

std::vector<SchemaFile> schemaFiles() {
    std::vector<SchemaFile> files{
        schemaFile("policy-set.schema.json", Json::object(), policySetSchema(Strictness::Strict))};
    for (const auto& kind : messageKinds) {
        const std::string id(kind.id);
        files.push_back(schemaFile(id + ".schema.json", {{"title", kind.title}, {"description", kind.description}},
                                   messageSchema(kind, Strictness::Strict)));
        files.push_back(
            schemaFile(id + ".lax.schema.json",
                       {{"title", kind.title}, {"description", "What the service takes, however odd the sender is"}},
                       messageSchema(kind, Strictness::Lax)));
    }
    return files;
}

std::string memberTable() {
    std::string table = "| member | values | column | setting | element |\n|---|---|---|---|---|\n";
    for (const auto& member : policyMembers) {
        const bool isApart = member.least > 1;
        const std::string values = member.type == MemberType::Flag ? "true, false"
                                   : member.type == MemberType::Mode
                                       ? "0, 32, 64, 96"
                                       : (isApart ? "0, " : "") + std::to_string(isApart ? member.least : 0) + " to " +
                                             std::to_string(member.most);
        table.append("| `").append(member.name).append("` | ").append(values);
        table.append(" | `").append(member.column).append("` | ");
        table.append(member.setting.empty() ? "-" : "`" + std::string(member.setting) + "`");
        table.append(" | `").append(member.element).append("` |\n");
    }
    return table;
}

} // namespace deskwatch
