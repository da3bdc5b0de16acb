#ifndef FAKE_MESSAGE_PORTS_H
#define FAKE_MESSAGE_PORTS_H

#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <message_port.h>

struct _bundle_t {
    std::vector<std::pair<std::string, std::string>> entries;
};

namespace fake {

/** A message that the service sent. */
struct SentMessage {
    std::string appId;
    std::string port;
    std::vector<std::pair<std::string, std::string>> entries;
};

/** The ports of the service, those of other applications, and the bundles that are alive. */
class MessagePorts {
public:
    struct LocalPort {
        std::string name;
        message_port_message_cb callback;
        void* userData;
    };

    /** The service's ports by their ids. */
    std::map<int, LocalPort> localPorts;

    /** Application id and name of each port that another application has open. */
    std::set<std::pair<std::string, std::string>> remotePorts;

    /** Every message that the service sent, whether or not somebody was listening. */
    std::vector<SentMessage> sent;

    /** The bundles that were created and not freed. */
    std::set<bundle*> bundles;

    /** Delivers a message to the service's port as the mail application would; a missing text stays out of it. */
    void deliver(const std::optional<std::string>& request, const std::optional<std::string>& argument);
};

} // namespace fake

#endif
