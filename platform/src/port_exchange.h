#ifndef PLATFORM_PORT_EXCHANGE_H
#define PLATFORM_PORT_EXCHANGE_H

#include <string>

#include "bus.h"
#include "message_port.h"
#include "platform-bus.h"
#include "port_sender.h"
#include "port_table.h"

namespace host {

/// Message ports as they are on the bus: opens this process's ports, finds those of others, and carries the messages.
///
/// An open port is a bus name, made of the application's id and the port's name. So the bus daemon can say at once
/// whether a port is open, even one of this process or of one that is busy. The messages themselves are method calls on
/// one object per process.
class PortExchange {
public:
    static PortExchange& get();

    /// The bus name of a port; not a valid one when no such application or port can exist.
    static std::string busName(const std::string& application, const std::string& port);

    PortExchange(const PortExchange&) = delete;
    PortExchange& operator=(const PortExchange&) = delete;
    ~PortExchange();

    /// Opens a port, or gives an open one another callback. Returns its id, or a message_port_error_e.
    int open(const std::string& name, message_port_message_cb callback, void* userData);

    /// Returns 0 or a message_port_error_e.
    int close(int id);

    /// Whether an application has a port open now.
    bool isOpen(const std::string& application, const std::string& port);

    /// Sends a message to a port that is open now. Returns 0 or a message_port_error_e.
    int send(const std::string& application, const std::string& port, const bundle& message);

private:
    explicit PortExchange(Bus& bus);

    /// Lets messages arrive, from the first call on.
    void exportObject();

    static gboolean onBegin(gpointer self);
    static gboolean onSend(PlatformBusMessagePort* object, GDBusMethodInvocation* invocation, const char* port,
                           const char* sender, GVariant* message, gpointer self);
    static gboolean onSendUnreadable(PlatformBusMessagePort* object, GDBusMethodInvocation* invocation,
                                     const char* port, const char* sender, gpointer self);

    /// Hands a message, or none, to a port, and answers the call that brought it.
    void deliver(GDBusMethodInvocation* invocation, const char* port, const char* sender, GVariant* message) const;

    Bus& bus_;
    c::ObjectOwner<PlatformBusMessagePort> skeleton_;
    PortTable ports_;
    PortSender sender_;
};

} // namespace host

#endif
