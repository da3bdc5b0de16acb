#ifndef DESKWATCH_DESK_SERVER_H
#define DESKWATCH_DESK_SERVER_H

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "exchange_server/served_device.h"
#include "exchange_server/served_policies.h"
#include "exchange_server/server_answer.h"

namespace deskwatch {

/// What the server is to do to a user's devices: once, at the next request of a device, or until `forget`.
struct ServerOrder {
    std::string user;
    std::string name;
    std::string value;

    /// The order and its value, as a user gives them.
    std::string text() const { return name + (value.empty() ? "" : " ") + value; }
};

/// A server of ActiveSync that answers OPTIONS, Provision and enough else to see whether a device may go on. It keeps
/// the two phases strictly, and does on order what servers do at their worst. It knows no network.
class DeskServer {
public:
    /// Without a password, everyone is whom he claims to be.
    DeskServer(ServedPolicies policies, std::string versions, std::optional<std::string> password);

    /// Answers any request. Throws only std::bad_alloc.
    ServerAnswer answer(const ServerRequest& request);

    /// Throws std::runtime_error when there is no such order, with the list of them, or its value is wrong.
    static void requireOrder(const ServerOrder& order);

    /// Does as ordered; returns a word about the order that this one takes the place of, or an empty text. Throws as
    /// requireOrder does, and for a user whom the server does not know: one without a policy, of whom no device has
    /// been here.
    std::string order(const ServerOrder& order);

    /// What the server knows, a line for each device.
    std::string report() const;

    /// The orders, each with its value and what it does, for a reader.
    static std::string orderHelp();
    static std::vector<std::string> orderNames();

private:
    struct Command;

    ServerAnswer answerCommand(const ServerRequest& request);
    ServerAnswer provision(const Command& command);
    ServerAnswer otherCommand(const Command& command);
    /// The Status that keeps a device from its commands; none when it may go on.
    std::optional<int> refusalOf(const Command& command) const;
    void requireUser(const std::string& user) const;
    ServerAnswer disturbed(const std::string& user, ServerAnswer answer);

    ServedPolicies policies_;
    std::string versions_;
    std::optional<std::string> password_;
    /// By user and device id.
    std::map<std::pair<std::string, std::string>, ServedDevice> devices_;
    std::map<std::string, ServerOrder> disturbances_;
    unsigned int nextKey_ = 1'000'000'001;
};

} // namespace deskwatch

#endif
