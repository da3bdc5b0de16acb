#ifndef PLATFORM_MESSAGE_PORTS_H
#define PLATFORM_MESSAGE_PORTS_H

#include <string>

#include "bus.h"
#include "message_port.h"
#include "open_ports.h"
#include "platform-bus.h"

namespace host {

/// The message ports that this process has open.
///
/// An open port is a bus name, made of the application's id and the port's name. So whether a port is open is a
/// question that the bus daemon answers at once, even about the own process or one that is busy. The messages
/// themselves are method calls on one object per process.
class MessagePorts {
public:
    static MessagePorts& get();

    /// The bus name of a port. It may be none, when the application or the port cannot exist.
    static std::string busName(const std::string& application, const std::string& port);

    MessagePorts(const MessagePorts&) = delete;
    MessagePorts& operator=(const MessagePorts&) = delete;
    ~MessagePorts();

    /// Opens a port, or gives an open one another callback. Returns its id, or a message_port_error_e.
    int open(const std::string& name, message_port_message_cb callback, void* userData);

    /// Returns 0 or a message_port_error_e.
    int close(int id);

    /// Whether an application has a port open now.
    bool isOpen(const std::string& application, const std::string& port);

    /// Sends a message to a port that is open now. Returns 0 or a message_port_error_e.
    int send(const std::string& application, const std::string& port, const bundle& message);

private:
    explicit MessagePorts(Bus& bus);

    static gboolean onSend(PlatformBusMessagePort* object, GDBusMethodInvocation* invocation, const char* port,
                           const char* sender, GVariant* message, gpointer self);

    Bus& bus_;
    ObjectPtr<PlatformBusMessagePort> skeleton_;
    OpenPorts ports_;
};

} // namespace host

#endif
