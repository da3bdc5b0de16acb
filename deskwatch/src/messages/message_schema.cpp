#include "messages/message_schema.h"

#include <nlohmann/json.hpp>

#include <limits>

namespace deskwatch {
namespace {

using OrderedJson = nlohmann::ordered_json;

/// An object with one member. The library's braces would make an array of two texts.
OrderedJson single(const char* name, const OrderedJson& value) {
    OrderedJson object = OrderedJson::object();
    object[name] = value;
    return object;
}

OrderedJson described(OrderedJson schema, std::string_view words) {
    schema["description"] = words;
    return schema;
}

/// An object with these members and no others, as far as the service is not more tolerant.
OrderedJson objectSchema(OrderedJson members, OrderedJson required, Strictness strictness) {
    OrderedJson object = single("type", "object");
    object["properties"] = std::move(members);
    object["required"] = std::move(required);
    if (strictness == Strictness::Strict) {
        object["additionalProperties"] = false;
    }
    return object;
}

OrderedJson valueSchema(const PolicyMember& member) {
    switch (member.type) {
    case MemberType::Flag:
        return single("type", "boolean");
    case MemberType::Mode:
        return single("enum", passwordModes);
    case MemberType::Number:
        break;
    }
    if (member.least > 1) {
        const OrderedJson range = OrderedJson::object({{"minimum", member.least}, {"maximum", member.most}});
        return OrderedJson::object({{"type", "integer"}, {"anyOf", OrderedJson::array({single("const", 0), range})}});
    }
    return OrderedJson::object({{"type", "integer"}, {"minimum", 0}, {"maximum", member.most}});
}

OrderedJson policySetSchema(Strictness strictness) {
    const bool isStrict = strictness == Strictness::Strict;
    OrderedJson schema{
        {"title", "Policy set"},
        {"description", isStrict ? "What an account's server demands. A member that is left out counts as 0 or "
                                   "false, so a missing allow... member forbids."
                                 : "What the service takes: any values. One of another type counts as 0 or "
                                   "false."}};
    OrderedJson members = OrderedJson::object();
    OrderedJson names = OrderedJson::array();
    for (const auto& member : policyMembers) {
        members[std::string(member.name)] =
            described(isStrict ? valueSchema(member) : OrderedJson::object(), member.words);
        names.push_back(member.name);
    }
    schema.update(objectSchema(std::move(members), isStrict ? names : OrderedJson::array(), strictness));
    return schema;
}

OrderedJson text(std::string_view words) {
    return described(single("type", "string"), words);
}

OrderedJson accountSchema(const MessageKind& kind, Strictness strictness) {
    OrderedJson members = OrderedJson::object();
    OrderedJson required = OrderedJson::array({kind.accountId});
    members[std::string(kind.accountId)] =
        described(OrderedJson::object(
                      {{"type", "integer"}, {"minimum", 1}, {"maximum", std::numeric_limits<std::int32_t>::max()}}),
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

OrderedJson accountsSchema(const MessageKind& kind, Strictness strictness) {
    OrderedJson accounts{
        {"type", "array"},
        {"description", kind.accounts == "accountId" ? "The accounts, despite the member's name" : "The accounts"},
        {"items", accountSchema(kind, strictness)}};
    if (strictness == Strictness::Strict) {
        accounts["minItems"] = 1;
    }
    return accounts;
}

OrderedJson messageSchema(const MessageKind& kind, Strictness strictness) {
    OrderedJson members = single("msgId", single("const", kind.id));
    OrderedJson required = OrderedJson::array({"msgId"});
    if (strictness == Strictness::Strict) {
        members["seqId"] = described(single("type", "integer"), "The sender's own number; not read");
    }
    if (kind.accounts.empty()) {
        if (strictness == Strictness::Strict) {
            members["param"] = described(single("type", "object"), "Not read");
        }
        return objectSchema(std::move(members), std::move(required), strictness);
    }
    const OrderedJson accounts = single(std::string(kind.accounts).c_str(), accountsSchema(kind, strictness));
    if (kind.holder.empty()) {
        members.update(accounts);
        required.push_back(kind.accounts);
    } else {
        members[std::string(kind.holder)] = objectSchema(accounts, OrderedJson::array({kind.accounts}), strictness);
        required.push_back(kind.holder);
    }
    OrderedJson message = objectSchema(std::move(members), std::move(required), strictness);
    message["$defs"] = single("policySet", policySetSchema(strictness));
    return message;
}

SchemaFile schemaFile(const std::string& name, const OrderedJson& head, const OrderedJson& body) {
    OrderedJson schema{{"$schema", "https://json-schema.org/draft/2020-12/schema"}, {"$id", name}};
    schema.update(head);
    schema.update(body);
    return {name, schema.dump(2) + "\n"};
}

} // namespace

std::vector<SchemaFile> schemaFiles() {
    std::vector<SchemaFile> files{
        schemaFile("policy-set.schema.json", OrderedJson::object(), policySetSchema(Strictness::Strict))};
    for (const auto& kind : messageKinds) {
        const std::string id(kind.id);
        files.push_back(schemaFile(id + ".schema.json", {{"title", kind.title}, {"description", kind.description}},
                                   messageSchema(kind, Strictness::Strict)));
        files.push_back(
            schemaFile(id + ".lax.schema.json",
                       {{"title", kind.title}, {"description", "What the service reads, however odd the sender is"}},
                       messageSchema(kind, Strictness::Lax)));
    }
    return files;
}

std::string memberTable(const NameElsewhere& parameterOf) {
    std::string table = "| member | values | column | setting | element | parameter |\n|---|---|---|---|---|---|\n";
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
        table.append(" | `")
            .append(member.element)
            .append("` | `-")
            .append(parameterOf(member.element))
            .append("` |\n");
    }
    return table;
}

} // namespace deskwatch
