#ifndef DESKWATCH_CONVERSATION_H
#define DESKWATCH_CONVERSATION_H

#include <map>
#include <optional>
#include <string>

#include "exchange/server_address.h"
#include "exchange/transport.h"
#include "wbxml/wbxml_element.h"

namespace deskwatch {

/// How an account is known to its server. What the server changes in a conversation is changed here.
struct ServerAccount {
    std::string url;
    std::string user;
    std::string deviceId;
    QueryForm form = QueryForm::Plain;
    int version = 0;
    /// "0" while the server has not given one.
    std::string policyKey = "0";
    std::map<std::string, std::string> cookies;
    bool allowsPlain = false;
};

/// What a command brought.
struct CommandReply {
    int httpStatus = 0;
    /// None when the body is empty or the HTTP status lets nobody expect a document.
    std::optional<WbxmlElement> document;
};

/// Sends the commands of one account. It goes where the server moved, and waits as long as the server asks for, up to
/// a limit.
class Conversation {
public:
    /// The account and the transport must outlive it.
    Conversation(Transport& transport, ServerAccount& account, std::string password);

    /// Asks which versions the server speaks: the list in its own words. Throws std::runtime_error with the reason and
    /// what to do when it does not say.
    std::string offeredVersions();

    /// Sends a command under a policy key. Throws std::runtime_error when there is no reply, or one that cannot be
    /// read.
    CommandReply command(const std::string& name, const WbxmlElement& body, const std::string& policyKey);

private:
    HttpReply send(const std::string& method, const std::string& command, const std::string& body,
                   const std::string& policyKey);
    HttpRequest request(const std::string& method, const std::string& command, const std::string& body,
                        const std::string& policyKey) const;
    void moveTo(const HttpReply& reply);

    Transport& transport_;
    ServerAccount& account_;
    std::string authorization_;
};

} // namespace deskwatch

#endif
