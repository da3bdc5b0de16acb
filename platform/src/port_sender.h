#ifndef PLATFORM_PORT_SENDER_H
#define PLATFORM_PORT_SENDER_H

#include <gio/gio.h>

#include <map>
#include <string>

#include "bus.h"
#include "message_port.h"

namespace host {

/// Sends messages to ports.
///
/// As on devices, a sender needs no connection to its own ports. It stays connected with the process that it reached
/// first. When that one has ended, sending fails until the main loop has told of it, or once, when another process has
/// opened the port meanwhile. A message that is too long for the connection is refused but leaves half of itself there:
/// the receiver gets the next one as no message at all, and no other until either side starts anew.
class PortSender {
public:
    explicit PortSender(Bus& bus) : bus_(bus) {}
    PortSender(const PortSender&) = delete;
    PortSender& operator=(const PortSender&) = delete;
    ~PortSender();

    /// Sends a message to a port of this process, which has this bus name. Returns 0 or a message_port_error_e.
    int sendToSelf(const std::string& busName, const std::string& port, const bundle& message);

    /// The same for a port of another application.
    int send(const std::string& busName, const std::string& port, const bundle& message);

private:
    enum class State { Sound, Garbled, Ruined };

    struct Remote {
        guint subscription = 0;
        std::string process; // its unique name; empty while not connected
        State state = State::Sound;
    };

    int connect(const std::string& busName, const std::string& port, const bundle& message);
    int sendAgain(Remote& remote, const std::string& busName, const std::string& port, const bundle& message);
    int useConnection(Remote& remote, const std::string& port, const bundle& message);
    void transmit(const std::string& process, const std::string& port, const bundle& message);
    void forget(const std::string& busName);

    static void onOwnerChange(GDBusConnection* connection, const char* sender, const char* path, const char* interface,
                              const char* signal, GVariant* arguments, gpointer self);

    Bus& bus_;
    std::map<std::string, Remote> remotes_;
};

} // namespace host

#endif
