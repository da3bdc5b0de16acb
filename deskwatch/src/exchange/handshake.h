#ifndef DESKWATCH_HANDSHAKE_H
#define DESKWATCH_HANDSHAKE_H

#include <optional>
#include <string>
#include <vector>

#include "exchange/conversation.h"
#include "exchange/provision_messages.h"

namespace deskwatch {

/// What a server wants of an account.
struct ServerDemand {
    enum class Kind {
        /// Nothing new: the account's key is still good.
        Nothing,
        /// The server has no policy for the user.
        NoPolicy,
        Policy,
        WipeDevice,
        WipeAccount,
    };
    Kind kind = Kind::Nothing;
    /// Of a policy: what to acknowledge it with, and its elements.
    std::string temporaryKey;
    std::vector<ProvisioningElement> elements;
};

/// What a server answered to an acknowledgement.
struct Acknowledged {
    /// Whether it took it. If not, `words` say why and what to do.
    bool isAccepted = false;
    std::string words;
    /// Whether the policy has to be asked for anew.
    bool isOutdated = false;
};

/// The duties of a client around provisioning. Each function is one step; between the steps the account can be stored.
/// All throw std::runtime_error with the server's reason in words and what the user can do.
class Handshake {
public:
    Handshake(Transport& transport, ServerAccount& account, const std::string& password)
        : account_(account), conversation_(transport, account, password) {}

    /// Chooses the version, unless one is given, and asks for the policy.
    ServerDemand connect(const std::optional<int>& version);

    /// Sends a command as a mail application does, and asks for the policy when the server wants that.
    ServerDemand refresh();

    /// Asks for the policy.
    ServerDemand askForPolicy();

    /// Says what became of a policy. The account has the final key after it when the server gave one.
    Acknowledged acknowledge(const std::string& temporaryKey, Compliance compliance);

    /// Describes the device in the versions where the request for the policy may not. A server that does not want to
    /// know changes nothing.
    void describeDevice();

    /// Says that a wipe is about to be done. The reply does not matter.
    void reportWipe(WipeOrder order);

private:
    /// Sends what needs no answer.
    void tell(const std::string& command, const WbxmlElement& body, const std::string& policyKey);

    ServerAccount& account_;
    Conversation conversation_;
};

} // namespace deskwatch

#endif
