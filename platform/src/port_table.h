#ifndef PLATFORM_PORT_TABLE_H
#define PLATFORM_PORT_TABLE_H

#include <glib.h>

#include <map>
#include <optional>
#include <string>

#include "message_port.h"

namespace host {

/// The ports that a process has open: their ids and names, and who gets the messages. Knows nothing of the bus.
///
/// A port takes messages once it has begun, so that those for an earlier port of its name do not reach it.
class PortTable {
public:
    /// The id of an open port, if it is open.
    std::optional<int> find(const std::string& name) const;

    /// The name of a port, if it is open.
    std::optional<std::string> nameOf(int id) const;

    /// Adds a port, or gives an open one another callback. Returns its id.
    int set(const std::string& name, message_port_message_cb callback, void* userData);

    /// Lets the next port in order of opening take messages.
    void beginNext() { ++lastBegun_; }

    void remove(int id) { ports_.erase(id); }

    /// Hands a message in its bus form, or none, to a port's callback, which may close the port. False when no port of
    /// that name has begun.
    bool deliver(const std::string& name, const char* sender, GVariant* message) const;

private:
    struct Port {
        std::string name;
        message_port_message_cb callback;
        void* userData;
    };

    std::map<int, Port> ports_;
    int lastId_ = 0;
    int lastBegun_ = 0;
};

} // namespace host

#endif
