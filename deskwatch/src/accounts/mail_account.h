#ifndef DESKWATCH_MAIL_ACCOUNT_H
#define DESKWATCH_MAIL_ACCOUNT_H

#include <optional>
#include <string>
#include <vector>

#include "exchange/conversation.h"
#include "provisioning/provisioning_document.h"

namespace deskwatch {

/// A policy whose server has not been told yet what became of it.
struct PendingPolicy {
    std::string temporaryKey;
    /// How often the wearer had stopped synchronising when the service got the policy; none before it got it.
    std::optional<int> stopsBefore;
    /// Whether the watch had applied this very policy before: the lock that it demanded is there, even if another
    /// account demands a better one by now.
    bool wasApplied = false;
};

/// An account of the watch's mail application. Its password is never part of it.
struct MailAccount {
    int id = 0;
    std::string name;
    ServerAccount server;
    /// The elements of the server's last policy and the message that carries it to the service; empty without one.
    std::vector<ProvisioningElement> elements;
    std::string message;
    std::optional<PendingPolicy> pending;
    /// What the server was last told.
    std::optional<int> acknowledged;
};

/// An account as JSON, and back. Reading throws std::runtime_error when the text is not that of an account.
std::string accountJson(const MailAccount& account);
MailAccount readAccountJson(const std::string& text);

} // namespace deskwatch

#endif
