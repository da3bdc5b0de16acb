#include "accounts/mail_account.h"

#include <nlohmann/json.hpp>

#include <stdexcept>

#include "text/json_input.h"
#include "text/value_output.h"

namespace deskwatch {
namespace {

using Json = nlohmann::ordered_json;

Json serverJson(const ServerAccount& server) {
    return {{"url", server.url},           {"user", server.user},
            {"deviceId", server.deviceId}, {"query", server.form == QueryForm::Base64 ? "base64" : "plain"},
            {"version", server.version},   {"policyKey", server.policyKey},
            {"cookies", server.cookies},   {"allowsPlain", server.allowsPlain}};
}

ServerAccount readServer(const Json& json) {
    return {json.at("url").get<std::string>(),
            json.at("user").get<std::string>(),
            json.at("deviceId").get<std::string>(),
            json.at("query") == "base64" ? QueryForm::Base64 : QueryForm::Plain,
            json.at("version").get<int>(),
            json.at("policyKey").get<std::string>(),
            json.at("cookies").get<std::map<std::string, std::string>>(),
            json.at("allowsPlain").get<bool>()};
}

Json pendingJson(const PendingPolicy& pending) {
    return {{"temporaryKey", pending.temporaryKey},
            {"stopsBefore", numberJson(pending.stopsBefore)},
            {"wasApplied", pending.wasApplied}};
}

std::optional<int> numberIn(const Json& json) {
    return json.is_null() ? std::nullopt : std::optional(json.get<int>());
}

} // namespace

std::string accountJson(const MailAccount& account) {
    Json json{{"id", account.id},
              {"name", account.name},
              {"server", serverJson(account.server)},
              {"elements", Json::array()},
              {"message", account.message},
              {"pending", account.pending ? pendingJson(*account.pending) : Json(nullptr)},
              {"acknowledged", numberJson(account.acknowledged)}};
    for (const auto& element : account.elements) {
        json["elements"].push_back({{"name", element.name}, {"value", element.value}, {"isList", element.isList}});
    }
    return jsonText(json, 2) + "\n";
}

MailAccount readAccountJson(const std::string& text) {
    try {
        const auto json = Json::parse(text);
        MailAccount account;
        account.id = json.at("id").get<int>();
        account.name = json.at("name").get<std::string>();
        account.server = readServer(json.at("server"));
        for (const auto& element : json.at("elements")) {
            account.elements.push_back({element.at("name").get<std::string>(), element.at("value").get<std::string>(),
                                        element.at("isList").get<bool>(), 0});
        }
        account.message = json.at("message").get<std::string>();
        if (const auto& pending = json.at("pending"); !pending.is_null()) {
            account.pending = PendingPolicy{pending.at("temporaryKey").get<std::string>(),
                                            numberIn(pending.at("stopsBefore")), pending.at("wasApplied").get<bool>()};
        }
        account.acknowledged = numberIn(json.at("acknowledged"));
        return account;
    } catch (const Json::exception& error) {
        throw std::runtime_error("not the state of an account: " + jsonFault(error));
    }
}

} // namespace deskwatch
