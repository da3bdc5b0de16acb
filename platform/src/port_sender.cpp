#include "port_sender.h"

#include "bundle_handle.h"
#include "environment.h"
#include "guard.h"
#include "host_bus.h"
#include "message_size.h"
#include "platform-bus.h"

namespace host {
namespace {

bool isTooLong(const bundle& message) {
    return message_size::of(message.pairs.pairs()) > message_size::limit;
}

void onSent(GObject* proxy, GAsyncResult* outcome, gpointer /*data*/) {
    g_autoptr(GError) error = nullptr;
    const bool isHandled =
        platform_bus_message_port_call_send_finish(PLATFORM_BUS_MESSAGE_PORT(proxy), outcome, &error);
    // a receiver that ends loses what it had not read, as on devices, where no sender is told
    if (!isHandled && !g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_NO_REPLY)) {
        report(std::string("a message was not handled: ") + error->message);
    }
}

c::ObjectOwner<PlatformBusMessagePort> portObjectOf(const Bus& bus, const std::string& process) {
    g_autoptr(GError) error = nullptr;
    c::ObjectOwner<PlatformBusMessagePort> object(platform_bus_message_port_proxy_new_sync(
        bus.connection(), callsAlone, process.c_str(), host_bus::applicationPath, nullptr, &error));
    if (object == nullptr) {
        throw HostError("cannot speak to " + process + ": " + error->message);
    }
    return object;
}

} // namespace

PortSender::~PortSender() {
    for (const auto& [name, remote] : remotes_) {
        g_dbus_connection_signal_unsubscribe(bus_.connection(), remote.subscription);
    }
}

int PortSender::sendToSelf(const std::string& busName, const std::string& port, const bundle& message) {
    if (!bus_.hasOwner(busName)) {
        return MESSAGE_PORT_ERROR_PORT_NOT_FOUND;
    }
    if (isTooLong(message)) {
        return MESSAGE_PORT_ERROR_MAX_EXCEEDED;
    }
    transmit(busName, port, message);
    return MESSAGE_PORT_ERROR_NONE;
}

int PortSender::send(const std::string& busName, const std::string& port, const bundle& message) {
    const auto known = remotes_.find(busName);
    return known != remotes_.end() ? sendAgain(known->second, busName, port, message) : connect(busName, port, message);
}

int PortSender::connect(const std::string& busName, const std::string& port, const bundle& message) {
    if (!g_dbus_is_name(busName.c_str())) { // no application has such an id
        return MESSAGE_PORT_ERROR_PORT_NOT_FOUND;
    }
    // Listens before it asks, so that no change is missed.
    Remote& remote = remotes_[busName];
    remote.subscription = g_dbus_connection_signal_subscribe(
        bus_.connection(), "org.freedesktop.DBus", "org.freedesktop.DBus", "NameOwnerChanged", "/org/freedesktop/DBus",
        busName.c_str(), G_DBUS_SIGNAL_FLAGS_NONE, onOwnerChange, this, nullptr);
    remote.process = bus_.ownerOf(busName).value_or("");
    const int refusal = remote.process.empty() ? MESSAGE_PORT_ERROR_PORT_NOT_FOUND : MESSAGE_PORT_ERROR_MAX_EXCEEDED;
    if (remote.process.empty() || isTooLong(message)) {
        forget(busName);
        return refusal;
    }
    transmit(remote.process, port, message);
    return MESSAGE_PORT_ERROR_NONE;
}

int PortSender::sendAgain(Remote& remote, const std::string& busName, const std::string& port, const bundle& message) {
    const auto owner = bus_.ownerOf(busName);
    if (!owner && bus_.hasOwner(remote.process)) { // the process lives and has closed the port
        forget(busName);
        return MESSAGE_PORT_ERROR_PORT_NOT_FOUND;
    }
    if (remote.process.empty() && owner) {
        remote = {remote.subscription, *owner, State::Sound};
    } else if (owner != remote.process) {
        remote.process.clear();
        return MESSAGE_PORT_ERROR_IO_ERROR;
    }
    return useConnection(remote, port, message);
}

int PortSender::useConnection(Remote& remote, const std::string& port, const bundle& message) {
    switch (remote.state) {
    case State::Sound:
        if (isTooLong(message)) {
            remote.state = State::Garbled;
            return MESSAGE_PORT_ERROR_MAX_EXCEEDED;
        }
        transmit(remote.process, port, message);
        return MESSAGE_PORT_ERROR_NONE;
    case State::Garbled:
        platform_bus_message_port_call_send_unreadable(
            portObjectOf(bus_, remote.process).get(), port.c_str(), Environment::get().applicationId().c_str(),
            G_DBUS_CALL_FLAGS_NO_AUTO_START, G_MAXINT, nullptr, nullptr, nullptr);
        remote.state = State::Ruined;
        return MESSAGE_PORT_ERROR_NONE;
    case State::Ruined:
        break;
    }
    return MESSAGE_PORT_ERROR_IO_ERROR;
}

void PortSender::transmit(const std::string& process, const std::string& port, const bundle& message) {
    platform_bus_message_port_call_send(portObjectOf(bus_, process).get(), port.c_str(),
                                        Environment::get().applicationId().c_str(), message.pairs.toVariant(),
                                        G_DBUS_CALL_FLAGS_NO_AUTO_START, G_MAXINT, nullptr, onSent, nullptr);
    bus_.flush();
}

void PortSender::forget(const std::string& busName) {
    const auto known = remotes_.find(busName);
    if (known != remotes_.end()) {
        g_dbus_connection_signal_unsubscribe(bus_.connection(), known->second.subscription);
        remotes_.erase(known);
    }
}

void PortSender::onOwnerChange(GDBusConnection* /*connection*/, const char* /*sender*/, const char* /*path*/,
                               const char* /*interface*/, const char* /*signal*/, GVariant* arguments, gpointer self) {
    const char* name = nullptr;
    g_variant_get_child(arguments, 0, "&s", &name);
    static_cast<PortSender*>(self)->forget(name);
}

} // namespace host
