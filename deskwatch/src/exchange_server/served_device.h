#ifndef DESKWATCH_SERVED_DEVICE_H
#define DESKWATCH_SERVED_DEVICE_H

#include <optional>
#include <string>

#include "exchange/provision_messages.h"
#include "wbxml/wbxml_element.h"

namespace deskwatch {

/// What the server knows of a device of a user.
struct ServedDevice {
    /// Of the policy that was sent and not acknowledged yet; good for one acknowledgement.
    std::string temporaryKey;
    /// Of the acknowledged one; empty when there is none.
    std::string key;
    /// The policy that the keys are for, as it was sent.
    std::string sentPolicy;
    /// The last acknowledgement.
    std::optional<int> acknowledged;
    WipeOrder wipe = WipeOrder::None;
    /// What the device reported of the wipe.
    std::optional<int> wipeReport;
};

/// What a request for Provision is about, and what the device record says to it. The answer's document.
class ProvisionExchange {
public:
    ProvisionExchange(ServedDevice& device, int version, std::optional<WbxmlElement> policy, unsigned int& nextKey)
        : device_(device), version_(version), policy_(std::move(policy)), nextKey_(nextKey) {}

    /// The answer's document, and the words for whoever runs the server.
    std::pair<WbxmlElement, std::string> answer(const WbxmlElement& request);

private:
    std::pair<WbxmlElement, std::string> firstPhase(const WbxmlElement& request, const std::string& type);
    std::pair<WbxmlElement, std::string> secondPhase(const WbxmlElement& policy, const std::string& type);
    std::string newKey();

    ServedDevice& device_;
    int version_;
    std::optional<WbxmlElement> policy_;
    unsigned int& nextKey_;
};

/// What an order has wiped, in words: the watch or the account.
std::string wipedPart(WipeOrder order);

/// A reply to Provision that only says a Status.
WbxmlElement provisionStatus(int number);

} // namespace deskwatch

#endif
