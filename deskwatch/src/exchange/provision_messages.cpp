#include "exchange/provision_messages.h"

#include "device/plain_text.h"
#include "exchange/protocol_version.h"

namespace deskwatch {
namespace {

using Elements = std::vector<WbxmlElement>;

/// A policy's Status: the user has none.
constexpr int noPolicy = 2;

std::optional<int> numberIn(const WbxmlElement* element) {
    return element != nullptr ? wholeNumber(element->text) : std::nullopt;
}

std::string textIn(const WbxmlElement* element) {
    return element != nullptr ? element->text : "";
}

WbxmlElement settingsElement(const char* name, Elements children) {
    return {"Settings:", name, "", std::move(children)};
}

WbxmlElement description() {
    const auto text = [](const char* name, const char* value) { return WbxmlElement{"Settings:", name, value, {}}; };
    return settingsElement(
        "DeviceInformation",
        {settingsElement("Set", {text("Model", "Watch on the desk"), text("FriendlyName", "deskwatch"),
                                 text("OS", "Tizen"), text("OSLanguage", "English")})});
}

WbxmlElement onePolicy(Elements content) {
    return provisionElement("Policies", Elements{provisionElement("Policy", std::move(content))});
}

/// The policy of the kind that was asked for, or the only one when it does not say its kind; else one that says that
/// there is none, because a server may name another kind in that answer than the one that it was asked for.
const WbxmlElement* policyIn(const WbxmlElement& reply, const char* type) {
    const auto* const policies = reply.child("Policies");
    if (policies == nullptr) {
        return nullptr;
    }
    const WbxmlElement* none = nullptr;
    for (const auto& policy : policies->children) {
        const auto* const kind = policy.child("PolicyType");
        if (policy.name == "Policy" && (kind == nullptr || kind->text == type)) {
            return &policy;
        }
        if (policy.name == "Policy" && numberIn(policy.child("Status")) == noPolicy) {
            none = &policy;
        }
    }
    return none;
}

std::vector<ProvisioningElement> elementsOf(const WbxmlElement& document) {
    std::vector<ProvisioningElement> elements;
    for (const auto& element : document.children) {
        elements.push_back({element.name, element.text, !element.children.empty(), 0});
    }
    return elements;
}

void readData(const WbxmlElement* data, ProvisionReply& result) {
    const auto* const document = data != nullptr ? data->child("EASProvisionDoc") : nullptr;
    if (document != nullptr) {
        result.hasDocument = true;
        result.elements = elementsOf(*document);
    } else if (data != nullptr && !data->text.empty()) {
        result.hasDocument = true;
        result.elements = readWapDocument(data->text);
    }
}

} // namespace

const char* policyTypeOf(int version) {
    return version == protocol::v2_5 ? policy_type::wap : policy_type::wbxml;
}

WbxmlElement policyRequest(int version, bool describesDevice) {
    Elements content;
    if (describesDevice) {
        content.push_back(description());
    }
    content.push_back(onePolicy({provisionElement("PolicyType", policyTypeOf(version))}));
    return provisionElement("Provision", std::move(content));
}

WbxmlElement deviceDescription() {
    return settingsElement("Settings", {description()});
}

WbxmlElement acknowledgement(int version, const std::string& key, Compliance compliance) {
    // servers need them in this order
    return provisionElement(
        "Provision",
        Elements{onePolicy({provisionElement("PolicyType", policyTypeOf(version)), provisionElement("PolicyKey", key),
                            provisionElement("Status", std::to_string(static_cast<int>(compliance)))})});
}

WbxmlElement wipeReport(WipeOrder order) {
    const char* const name = order == WipeOrder::Account ? "AccountOnlyRemoteWipe" : "RemoteWipe";
    return provisionElement("Provision", Elements{provisionElement(name, Elements{provisionElement("Status", "1")})});
}

ProvisionReply readProvisionReply(const WbxmlElement& reply, int version) {
    ProvisionReply result;
    result.status = statusOf(reply);
    result.wipe = reply.child("RemoteWipe") != nullptr              ? WipeOrder::Device
                  : reply.child("AccountOnlyRemoteWipe") != nullptr ? WipeOrder::Account
                                                                    : WipeOrder::None;
    const auto* const policy = policyIn(reply, policyTypeOf(version));
    if (policy != nullptr) {
        result.policyStatus = numberIn(policy->child("Status"));
        result.policyKey = textIn(policy->child("PolicyKey"));
        readData(policy->child("Data"), result);
    }
    return result;
}

std::optional<int> statusOf(const WbxmlElement& reply) {
    return numberIn(reply.child("Status"));
}

} // namespace deskwatch
