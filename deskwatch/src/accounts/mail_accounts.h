#ifndef DESKWATCH_MAIL_ACCOUNTS_H
#define DESKWATCH_MAIL_ACCOUNTS_H

#include <functional>
#include <optional>
#include <string>

#include "accounts/account_store.h"
#include "accounts/compliance.h"
#include "exchange/handshake.h"
#include "session/device_session.h"

namespace deskwatch {

/// What a user wants of a new account.
struct NewAccount {
    std::string url;
    std::string user;
    /// The lowest free number without one.
    std::optional<int> id;
    /// Made of the user and the server without one.
    std::string name;
    QueryForm form = QueryForm::Plain;
    /// The highest that the server speaks without one.
    std::optional<int> version;
    bool allowsPlain = false;
};

/// The accounts of a watch's mail application that belong to a server: asks the server for the policy, gives it to the
/// service, tells the server what became of it, and obeys an order to wipe. Each step is stored before the next, so
/// that `refresh` goes on where an earlier command ended.
class MailAccounts {
public:
    struct Surroundings {
        Transport& transport;
        /// How long the wearer may take, seconds; 0 does not wait for him.
        int patience = 0;
        /// Gets a line for each thing that happened.
        std::function<void(const std::string& line)> tell;
        std::function<std::string(const MailAccount& account)> password;
    };

    /// The process is on the watch as its mail application. The session must outlive this object.
    MailAccounts(const DeviceSession& session, Surroundings surroundings);

    // Each throws Refusal when the policy is not applied, because of the wearer or of the watch, and
    // std::runtime_error with what went wrong and what the user can do.

    void connect(const NewAccount& wanted);
    void refresh(int id);
    void disconnect(int id);

    const AccountStore& store() const { return store_; }

private:
    void obey(MailAccount& account, Handshake& handshake, const ServerDemand& demand);
    void takePolicy(MailAccount& account, const ServerDemand& demand);
    void takeNoPolicy(MailAccount& account);
    void finish(MailAccount& account, Handshake& handshake, bool mayStartOver);
    /// Whether the account is stored with the policy of its server.
    bool isOnWatch(const MailAccount& account) const;
    /// Sends the policy again if it was lost or replaced; false when it is there.
    bool restore(const MailAccount& account);
    std::optional<Verdict> answerOfWatch(const MailAccount& account) const;
    void wipe(MailAccount& account, Handshake& handshake, WipeOrder order);
    /// Tells what became of the request. False when it was not done.
    bool sendToService(const MailAccount& account, const std::string& request, const std::string& argument);
    void say(const MailAccount& account, const std::string& text) const;
    MailAccount newAccount(const NewAccount& wanted) const;
    int freeId() const;
    int stopsNow() const;

    const DeviceSession& session_;
    Surroundings surroundings_;
    AccountStore store_;
};

} // namespace deskwatch

#endif
