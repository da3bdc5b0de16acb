#include "device/bus_connection.h"

#include <stdexcept>

namespace deskwatch {

c::ObjectOwner<GDBusConnection> connectToBus(const std::string& address) {
    GError* error = nullptr;
    const auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                         G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    c::ObjectOwner<GDBusConnection> connection(
        g_dbus_connection_new_for_address_sync(address.c_str(), flags, nullptr, nullptr, &error));
    if (connection == nullptr) {
        throw std::runtime_error("cannot reach the bus at " + address + ": " + c::takeMessage(error));
    }
    return connection;
}

} // namespace deskwatch
