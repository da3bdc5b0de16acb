#include "exchange_server/served_device.h"

#include <algorithm>

#include "exchange/protocol_version.h"
#include "wbxml/element_xml.h"

namespace deskwatch {
namespace {

using Elements = std::vector<WbxmlElement>;
using Answer = std::pair<WbxmlElement, std::string>;

WbxmlElement status(int number) {
    return provisionElement("Status", std::to_string(number));
}

/// A reply of Status 1 about one policy.
WbxmlElement policyReply(Elements policy, Elements beside = {}) {
    Elements content{status(1), provisionElement("Policies", Elements{provisionElement("Policy", std::move(policy))})};
    std::move(beside.begin(), beside.end(), std::back_inserter(content));
    return provisionElement("Provision", std::move(content));
}

std::ptrdiff_t placeOf(const WbxmlElement& policy, const char* name) {
    const auto found = std::find_if(policy.children.begin(), policy.children.end(),
                                    [name](const WbxmlElement& element) { return element.name == name; });
    return found - policy.children.begin();
}

bool isInOrder(const WbxmlElement& policy) {
    return placeOf(policy, "PolicyType") < placeOf(policy, "PolicyKey") &&
           placeOf(policy, "PolicyKey") < placeOf(policy, "Status");
}

const char* wipeElement(WipeOrder order) {
    return order == WipeOrder::Account ? "AccountOnlyRemoteWipe" : "RemoteWipe";
}

/// The status in a report on a wipe of that kind; null when the request has none.
const WbxmlElement* reportIn(const WbxmlElement& request, WipeOrder order) {
    return request.at({wipeElement(order), "Status"});
}

} // namespace

std::string wipedPart(WipeOrder order) {
    return order == WipeOrder::Account ? "the account" : "the watch";
}

WbxmlElement provisionStatus(int number) {
    return provisionElement("Provision", Elements{status(number)});
}

Answer ProvisionExchange::answer(const WbxmlElement& request) {
    if (request.name != "Provision") {
        return {provisionStatus(2), "a document that is not Provision"};
    }
    for (const auto order : {WipeOrder::Device, WipeOrder::Account}) {
        if (const auto* const report = reportIn(request, order)) {
            device_.wipeReport = report->text == "1" ? 1 : 2;
            device_.key.clear();
            return {provisionStatus(1),
                    "reports a wipe of " + wipedPart(order) + " with " + std::to_string(*device_.wipeReport)};
        }
    }
    const auto* const policy = request.at({"Policies", "Policy"});
    const auto* const type = policy != nullptr ? policy->child("PolicyType") : nullptr;
    if (type == nullptr) {
        return {device_.wipe == WipeOrder::None
                    ? provisionStatus(2)
                    : provisionElement("Provision", Elements{status(1), provisionElement(wipeElement(device_.wipe))}),
                "asks for no kind of policy"};
    }
    return policy->child("PolicyKey") == nullptr ? firstPhase(request, type->text) : secondPhase(*policy, type->text);
}

Answer ProvisionExchange::firstPhase(const WbxmlElement& request, const std::string& type) {
    if (version_ >= protocol::v14_1 && request.child("DeviceInformation") == nullptr) {
        return {provisionStatus(165), "does not describe itself"};
    }
    if (type != policy_type::wbxml) {
        return {policyReply({provisionElement("PolicyType", type), status(3)}), "asks for the unknown kind " + type};
    }
    if (device_.wipe != WipeOrder::None) {
        return {policyReply({provisionElement("PolicyType", type), status(1)},
                            {provisionElement(wipeElement(device_.wipe))}),
                "is ordered to wipe " + wipedPart(device_.wipe)};
    }
    if (!policy_) {
        return {policyReply({provisionElement("PolicyType", type), status(2)}), "is told that there is no policy"};
    }
    device_.temporaryKey = newKey();
    device_.sentPolicy = elementXml(*policy_);
    return {policyReply({provisionElement("PolicyType", type), status(1),
                         provisionElement("PolicyKey", device_.temporaryKey),
                         provisionElement("Data", Elements{*policy_})}),
            "gets the policy"};
}

Answer ProvisionExchange::secondPhase(const WbxmlElement& policy, const std::string& type) {
    if (device_.wipe != WipeOrder::None) {
        return {provisionStatus(140), "acknowledges, and is told to ask for the order to wipe"};
    }
    const auto* const said = policy.child("Status");
    if (said == nullptr || !isInOrder(policy) || said->text.size() != 1 || said->text < "1" || said->text > "4") {
        return {provisionStatus(2), "acknowledges in a form that is not allowed"};
    }
    const auto key = policy.child("PolicyKey")->text;
    if (device_.temporaryKey.empty() || key != device_.temporaryKey) {
        return {policyReply({provisionElement("PolicyType", type), status(5)}), "acknowledges a wrong key"};
    }
    device_.temporaryKey.clear();
    device_.acknowledged = said->text[0] - '0';
    const bool isAccepted = device_.acknowledged != static_cast<int>(Compliance::Refused);
    device_.key = isAccepted ? newKey() : "";
    const auto remark = "acknowledges the policy with " + said->text;
    if (!isAccepted) {
        return {policyReply({status(2)}), remark};
    }
    return {policyReply({provisionElement("PolicyType", type), status(1), provisionElement("PolicyKey", device_.key)}),
            remark};
}

std::string ProvisionExchange::newKey() {
    return std::to_string(nextKey_++);
}

} // namespace deskwatch
