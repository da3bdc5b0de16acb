#include "device/bus_connection.h"

#include <stdexcept>

#include "device/deadline.h"
#include "device/patience.h"

namespace deskwatch {
namespace {

/// Null on a time-out.
c::ObjectOwner<GDBusConnection> tryToConnect(const std::string& address, std::chrono::milliseconds atMost,
                                             const Connect& connect) {
    const Deadline deadline(atMost);
    GError* error = nullptr;
    c::ObjectOwner<GDBusConnection> connection(connect(deadline.cancellable(), &error));
    if (connection == nullptr && g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CANCELLED) == FALSE) {
        throw std::runtime_error("cannot reach the bus at " + address + ": " + c::takeMessage(error));
    }
    g_clear_error(&error);
    return connection;
}

} // namespace

c::ObjectOwner<GDBusConnection> connectInTime(const std::string& address, std::chrono::milliseconds patience,
                                              const Connect& connect) {
    const std::string bus = "the bus at " + address;
    c::ObjectOwner<GDBusConnection> connection;
    const bool isConnected = tryPatiently(patience, noticeOfStart, bus + ", which has not answered", [&](auto atMost) {
        connection = tryToConnect(address, atMost, connect);
        return connection != nullptr;
    });
    return isConnected ? std::move(connection) : throw NoAnswer(bus, patience);
}

c::ObjectOwner<GDBusConnection> connectToBus(const std::string& address, std::chrono::milliseconds patience) {
    return connectInTime(address, patience, [&](GCancellable* cancellable, GError** error) {
        const auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                             G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
        return g_dbus_connection_new_for_address_sync(address.c_str(), flags, nullptr, cancellable, error);
    });
}

} // namespace deskwatch
