#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <utility>

#include "device/plain_text.h"
#include "exchange_server/desk_server.h"
#include "text/suggestion.h"
#include "text/text_table.h"
#include "text/value_text.h"
#include "wbxml/wbxml_codec.h"

namespace deskwatch {
namespace {

/// What an order needs after its name.
enum class Needs { Nothing, Number, HttpStatus, Text };

struct OrderRow {
    const char* name;
    const char* effect;
    Needs needs;
    /// Whether it changes the next answer, and is not about the devices.
    bool isDisturbance;
};

constexpr OrderRow orderRows[] = {
    {"wipe", "have the user's devices wiped", Needs::Nothing, false},
    {"account-wipe", "have the account wiped from the user's devices", Needs::Nothing, false},
    {"forget", "forget the user's devices, their wipe included", Needs::Nothing, false},
    {"http", "answer the next request with this HTTP status", Needs::HttpStatus, true},
    {"status", "answer the next request with this Status", Needs::Number, true},
    {"policy-status", "answer the next request for a policy with this Status of it", Needs::Number, true},
    {"busy", "answer the next request with 503 and this number of seconds below 1000 to wait", Needs::Number, true},
    {"redirect", "answer the next request with 451 and this URL", Needs::Text, true},
    {"slow", "answer the next request after this number of seconds, below 1000", Needs::Number, true},
    {"cut", "break off in the middle of the next answer", Needs::Nothing, true},
    {"broken", "spoil the WBXML of the next answer", Needs::Nothing, true},
};

const OrderRow* rowOf(const std::string& name) {
    const auto* const found = std::find_if(std::begin(orderRows), std::end(orderRows),
                                           [&name](const OrderRow& row) { return name == row.name; });
    return found != std::end(orderRows) ? found : nullptr;
}

std::optional<int> numberOf(const std::string& text) {
    const auto number = wholeNumber(text);
    return number && *number >= 0 && *number < 1000 ? number : std::nullopt;
}

bool isHttpStatus(const std::string& text) {
    constexpr int least = 100;
    return numberOf(text).value_or(0) >= least;
}

bool isLegal(const std::string& value, Needs needs) {
    switch (needs) {
    case Needs::Number:
        return numberOf(value).has_value();
    case Needs::HttpStatus:
        return isHttpStatus(value);
    case Needs::Text:
        return !value.empty() && printable(value) == value;
    case Needs::Nothing:
        break;
    }
    return value.empty();
}

const char* wordsFor(Needs needs) {
    switch (needs) {
    case Needs::Number:
        return "a number below 1000";
    case Needs::HttpStatus:
        return "a status from 100 to 999";
    case Needs::Text:
        return "a URL";
    case Needs::Nothing:
        break;
    }
    return "no value";
}

std::string provisionWith(const std::string& status, const std::string& policyStatus) {
    std::vector<WbxmlElement> content{provisionElement("Status", status)};
    if (!policyStatus.empty()) {
        content.push_back(provisionElement(
            "Policies", std::vector<WbxmlElement>{provisionElement(
                            "Policy", std::vector<WbxmlElement>{provisionElement("Status", policyStatus)})}));
    }
    return encodeWbxml(provisionElement("Provision", std::move(content)));
}

} // namespace

std::string DeskServer::orderHelp() {
    std::vector<std::vector<std::string>> rows;
    for (const auto& row : orderRows) {
        const std::string value = row.needs == Needs::Nothing ? "" : row.needs == Needs::Text ? " URL" : " N";
        rows.push_back({"  " + (row.name + value), row.effect});
    }
    return textTable(rows);
}

std::vector<std::string> DeskServer::orderNames() {
    std::vector<std::string> names;
    std::transform(std::begin(orderRows), std::end(orderRows), std::back_inserter(names),
                   [](const OrderRow& row) { return row.name; });
    return names;
}

void DeskServer::requireOrder(const ServerOrder& order) {
    const auto* const row = rowOf(order.name);
    if (row == nullptr) {
        const auto names = orderNames();
        throw std::runtime_error("\"" + order.name + "\" is not an order; the orders are " + joined(names, ", ") +
                                 didYouMean(order.name, {names.begin(), names.end()}));
    }
    if (!isLegal(order.value, row->needs)) {
        throw std::runtime_error("the order " + order.name + " takes " + wordsFor(row->needs));
    }
}

void DeskServer::requireUser(const std::string& user) const {
    if (policies_.servesEverybody()) {
        return;
    }
    auto known = policies_.users();
    for (const auto& [id, device] : devices_) {
        known.insert(id.first);
    }
    if (known.count(user) == 0) {
        throw std::runtime_error("\"" + user + "\" is not a user of this server; it knows " +
                                 printable(joined({known.begin(), known.end()}, ", ")) +
                                 didYouMean(user, {known.begin(), known.end()}));
    }
}

std::string DeskServer::order(const ServerOrder& order) {
    requireOrder(order);
    requireUser(order.user);
    if (rowOf(order.name)->isDisturbance) {
        const auto pending = std::exchange(disturbances_[order.user], order);
        return pending.name.empty() ? "" : "in the place of " + pending.text() + ", which no device has met\n";
    }
    const auto ofUser = [&order](const auto& entry) { return entry.first.first == order.user; };
    if (std::none_of(devices_.begin(), devices_.end(), ofUser)) {
        throw std::runtime_error("no device of \"" + order.user + "\" has been here (deskwatch exchange show)");
    }
    for (auto device = devices_.begin(); device != devices_.end();) {
        if (!ofUser(*device)) {
            ++device;
        } else if (order.name == "forget") {
            device = devices_.erase(device);
        } else {
            device->second.wipe = order.name == "wipe" ? WipeOrder::Device : WipeOrder::Account;
            device->second.wipeReport.reset();
            ++device;
        }
    }
    return "";
}

ServerAnswer DeskServer::disturbed(const std::string& user, ServerAnswer answer) {
    const auto found = disturbances_.find(user);
    if (found == disturbances_.end() || (found->second.name == "policy-status" && !answer.isAboutPolicy)) {
        return answer;
    }
    const auto order = found->second;
    disturbances_.erase(found);
    answer.remark += " (" + order.text() + ")";
    const int number = numberOf(order.value).value_or(0);
    if (order.name == "slow") {
        answer.delay = number;
    } else if (order.name == "cut") {
        answer.isCut = true;
    } else if (order.name == "broken") {
        answer.body = answer.body.substr(0, answer.body.size() / 2) + "\xFF\xFF";
    } else if (order.name == "status") {
        answer.body = provisionWith(order.value, "");
    } else if (order.name == "policy-status") {
        answer.body = provisionWith("1", order.value);
    } else {
        answer.body.clear();
        answer.status = order.name == "busy" ? 503 : order.name == "redirect" ? 451 : number;
        if (order.name != "http") {
            answer.headers.emplace_back(order.name == "busy" ? "Retry-After" : "X-MS-Location", order.value);
        }
    }
    return answer;
}

} // namespace deskwatch
