#ifndef DESKWATCH_BUS_CLIENT_H
#define DESKWATCH_BUS_CLIENT_H

#include <chrono>
#include <functional>
#include <string>

#include "c_owners.h"
#include "device/bus_connection.h"
#include "device/bus_daemon.h"

namespace deskwatch {

/// A connection of our own to the bus of a device, apart from any connection that the process has as an application.
class BusClient {
public:
    /// Throws std::runtime_error when nobody answers at that address, and NoAnswer when somebody does, and not in time.
    explicit BusClient(const std::string& address, std::chrono::milliseconds patience = busPatience);

    /// What is called, and where.
    struct Method {
        std::string owner;
        std::string path;
        std::string interface;
        std::string name;
    };

    /// Calls a method and waits for its answer; the owner is started when it does not run. A floating `arguments` is
    /// taken. Throws std::runtime_error with the reason when the call fails or is not answered in time.
    c::VariantOwner call(const Method& method, GVariant* arguments, std::chrono::milliseconds atMost) const;

    /// Calls back through the main loop when the bus has ended. At most once for each client, which has to live then.
    void whenClosed(std::function<void()> callback);

    /// Sends a signal to everybody. A floating `arguments` is taken. Throws std::runtime_error when it cannot be sent.
    void announce(const Method& signal, GVariant* arguments) const;

    /// Answers who is on the bus. It must not outlive this object.
    BusDaemon daemon() const { return BusDaemon(connection_.get(), patience_); }

private:
    static void onClosed(BusClient* self);

    c::ObjectOwner<GDBusConnection> connection_;
    std::chrono::milliseconds patience_;
    std::function<void()> closed_;
};

} // namespace deskwatch

#endif
