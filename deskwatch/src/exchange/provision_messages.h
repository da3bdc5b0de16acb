#ifndef DESKWATCH_PROVISION_MESSAGES_H
#define DESKWATCH_PROVISION_MESSAGES_H

#include <optional>
#include <string>
#include <vector>

#include "provisioning/provisioning_document.h"
#include "wbxml/wbxml_element.h"

namespace deskwatch {

/// The kinds of policies that servers send.
namespace policy_type {
inline constexpr char wbxml[] = "MS-EAS-Provisioning-WBXML";
/// Of version 2.5 alone.
inline constexpr char wap[] = "MS-WAP-Provisioning-XML";
} // namespace policy_type

/// The kind that a version has.
const char* policyTypeOf(int version);

/// What a server orders to wipe.
enum class WipeOrder { None, Device, Account };

/// What the client says about a policy in the second phase.
enum class Compliance { Applied = 1, Partly = 2, Refused = 3, ManagedElsewhere = 4 };

/// Asks for the policy, with key 0. The device describes itself there from version 14.1 on, and may not before.
WbxmlElement policyRequest(int version, bool describesDevice);

/// Describes the device, for the versions where the request for the policy may not.
WbxmlElement deviceDescription();

/// Says what became of the policy with this temporary key.
WbxmlElement acknowledgement(int version, const std::string& key, Compliance compliance);

/// Says that a wipe is done.
WbxmlElement wipeReport(WipeOrder order);

/// A reply to Provision. Whatever is missing in it is empty.
struct ProvisionReply {
    std::optional<int> status;
    std::optional<int> policyStatus;
    std::string policyKey;
    WipeOrder wipe = WipeOrder::None;
    /// Whether there is a policy, and its elements.
    bool hasDocument = false;
    std::vector<ProvisioningElement> elements;
};

/// Reads a reply by the names of its elements. A policy of a kind that was not asked for is ignored.
ProvisionReply readProvisionReply(const WbxmlElement& reply, int version);

/// The Status of the reply to any command; none when it has none.
std::optional<int> statusOf(const WbxmlElement& reply);

/// The elements that a document of version 2.5 stands for. Throws std::runtime_error when it is not XML.
std::vector<ProvisioningElement> readWapDocument(const std::string& xml);

} // namespace deskwatch

#endif
