#include "device/bus_client.h"

#include <stdexcept>
#include <utility>

#include "device/patience.h"
namespace deskwatch {

BusClient::BusClient(const std::string& address, std::chrono::milliseconds patience)
    : connection_(connectToBus(address, patience)), patience_(patience) {}

void BusClient::whenClosed(std::function<void()> callback) {
    closed_ = std::move(callback);
    g_signal_connect_swapped(connection_.get(), "closed", G_CALLBACK(onClosed), this);
}

void BusClient::onClosed(BusClient* self) {
    self->closed_();
}

c::VariantOwner BusClient::call(const Method& method, GVariant* arguments, std::chrono::milliseconds atMost) const {
    GError* error = nullptr;
    c::VariantOwner answer(g_dbus_connection_call_sync(
        connection_.get(), method.owner.c_str(), method.path.c_str(), method.interface.c_str(), method.name.c_str(),
        arguments, nullptr, G_DBUS_CALL_FLAGS_NONE, inMilliseconds(atMost), nullptr, &error));
    if (answer == nullptr) {
        throw std::runtime_error("no answer to " + method.name + " from " + method.owner + ": " +
                                 c::takeMessage(error));
    }
    return answer;
}

void BusClient::announce(const Method& signal, GVariant* arguments) const {
    GError* error = nullptr;
    if (g_dbus_connection_emit_signal(connection_.get(), nullptr, signal.path.c_str(), signal.interface.c_str(),
                                      signal.name.c_str(), arguments, &error) == FALSE ||
        g_dbus_connection_flush_sync(connection_.get(), nullptr, &error) == FALSE) {
        throw std::runtime_error("cannot send the signal " + signal.name + ": " + c::takeMessage(error));
    }
}

} // namespace deskwatch
