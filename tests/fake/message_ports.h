#ifndef FAKE_MESSAGE_PORTS_H
#define FAKE_MESSAGE_PORTS_H

#include <message_port.h>

#include <deque>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

struct _bundle_t {
    // A text that was handed out stays where it is while others are added.
    std::deque<std::pair<std::string, std::string>> entries;
};

namespace fake {

/// A message that the service sent.
struct SentMessage {
    std::string appId;
    std::string port;
    std::vector<std::pair<std::string, std::string>> entries;
};

/// The ports of the service, those of other applications, and the bundles that are alive.
class MessagePorts {
public:
    struct LocalPort {
        std::string name;
        message_port_message_cb callback;
        void* userData;
    };

    /// The service's ports by their ids.
    std::map<int, LocalPort> localPorts;

    /// Application id and name of each port that another application has open.
    std::set<std::pair<std::string, std::string>> remotePorts;

    /// Every message that the service sent, whether or not somebody was listening.
    std::vector<SentMessage> sent;

    /// The bundles that were created and not freed.
    std::set<bundle*> bundles;

    /// What of it arrived at ports of other applications; none stands for a message that cannot be read.
    std::vector<std::optional<SentMessage>> arrived;

    /// Sends to a port of another application. The service stays connected with the process that it reached first, as
    /// on a device: sending fails after that one's end, until the service hears of it or has tried once and reaches the
    /// next one. A message that is too long for a connection spoils it.
    int sendToRemote(const SentMessage& message, bool isTooLong);

    /// Ends an application, which the service hears of later.
    void killRemote(const std::string& appId);

    /// Lets the service hear of the ends of other applications.
    void tellEnds();

    /// Delivers what the service sent to ports of its own.
    void deliverOwn();

    /// The service's own port of this name, null when it is closed.
    LocalPort* find(const std::string& name, int* id = nullptr);

    /// Delivers a message to the service's port as the mail application would; a missing text stays out of it.
    void deliver(const std::optional<std::string>& request, const std::optional<std::string>& argument);

    /// Messages that the service sent to ports of its own, by their ids, and that are still to be delivered.
    std::deque<std::pair<int, SentMessage>> pending;

    /// The id of the port that was opened last.
    int lastId = 0;

private:
    enum class Connection { Sound, Garbled, Ruined, Broken, Lost };

    /// By application and port.
    std::map<std::pair<std::string, std::string>, Connection> connections_;
};

} // namespace fake

#endif
