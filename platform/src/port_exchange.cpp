#include "port_exchange.h"

#include "environment.h"
#include "guard.h"
#include "host_bus.h"
#include "message_size.h"
#include "text.h"
#include "text_pairs.h"

namespace host {
PortExchange& PortExchange::get() {
    static PortExchange exchange(Bus::get());
    return exchange;
}

std::string PortExchange::busName(const std::string& application, const std::string& port) {
    return application + ".port_" + escapedForBusName(port);
}

PortExchange::PortExchange(Bus& bus) : bus_(bus), skeleton_(platform_bus_message_port_skeleton_new()), sender_(bus) {
    g_signal_connect(skeleton_.get(), "handle-send", G_CALLBACK(onSend), this);
    g_signal_connect(skeleton_.get(), "handle-send-unreadable", G_CALLBACK(onSendUnreadable), this);
}

PortExchange::~PortExchange() {
    g_signal_handlers_disconnect_by_data(skeleton_.get(), this);
}

int PortExchange::open(const std::string& name, message_port_message_cb callback, void* userData) {
    if (ports_.find(name)) {
        return ports_.set(name, callback, userData);
    }
    const std::string nameOnBus = busName(Environment::get().applicationId(), name);
    if (!g_dbus_is_name(nameOnBus.c_str())) {
        return MESSAGE_PORT_ERROR_INVALID_PARAMETER;
    }
    exportObject(); // before the name, since whoever sees the name may send at once
    if (!bus_.requestName(nameOnBus)) {
        report("cannot open the port " + name + ": another process of this application has it open");
        return MESSAGE_PORT_ERROR_RESOURCE_UNAVAILABLE;
    }
    g_idle_add_full(G_PRIORITY_DEFAULT, onBegin, this, nullptr);
    return ports_.set(name, callback, userData);
}

void PortExchange::exportObject() {
    auto* skeleton = G_DBUS_INTERFACE_SKELETON(skeleton_.get());
    if (g_dbus_interface_skeleton_get_connection(skeleton) != nullptr) {
        return;
    }
    g_autoptr(GError) error = nullptr;
    if (!g_dbus_interface_skeleton_export(skeleton, bus_.connection(), host_bus::applicationPath, &error)) {
        throw HostError(std::string("cannot receive messages: ") + error->message);
    }
}

int PortExchange::close(int id) {
    const auto name = ports_.nameOf(id);
    if (!name) {
        return MESSAGE_PORT_ERROR_PORT_NOT_FOUND;
    }
    bus_.releaseName(busName(Environment::get().applicationId(), *name));
    ports_.remove(id);
    return MESSAGE_PORT_ERROR_NONE;
}

bool PortExchange::isOpen(const std::string& application, const std::string& port) {
    return bus_.hasOwner(busName(application, port));
}

int PortExchange::send(const std::string& application, const std::string& port, const bundle& message) {
    if (!isUtf8(port)) {
        return MESSAGE_PORT_ERROR_INVALID_PARAMETER;
    }
    const std::string name = busName(application, port);
    return application == Environment::get().applicationId() ? sender_.sendToSelf(name, port, message)
                                                             : sender_.send(name, port, message);
}

gboolean PortExchange::onBegin(gpointer self) {
    static_cast<PortExchange*>(self)->ports_.beginNext();
    return G_SOURCE_REMOVE;
}

gboolean PortExchange::onSend(PlatformBusMessagePort* /*object*/, GDBusMethodInvocation* invocation, const char* port,
                              const char* sender, GVariant* message, gpointer self) {
    static_cast<PortExchange*>(self)->deliver(invocation, port, sender, message);
    return TRUE;
}

gboolean PortExchange::onSendUnreadable(PlatformBusMessagePort* /*object*/, GDBusMethodInvocation* invocation,
                                        const char* port, const char* sender, gpointer self) {
    static_cast<PortExchange*>(self)->deliver(invocation, port, sender, nullptr);
    return TRUE;
}

void PortExchange::deliver(GDBusMethodInvocation* invocation, const char* port, const char* sender,
                           GVariant* message) const {
    // the sender's library has seen to that, where it has one
    if (message != nullptr && message_size::of(text_pairs::read(message)) > message_size::limit) {
        g_dbus_method_invocation_return_dbus_error(
            invocation, "tesk.host.Error.MessageTooLong",
            ("the message is longer than " + std::to_string(message_size::limit) + " bytes").c_str());
        return;
    }
    try {
        if (ports_.deliver(port, sender, message)) {
            g_dbus_method_invocation_return_value(invocation, nullptr);
        } else {
            g_dbus_method_invocation_return_dbus_error(invocation, "tesk.host.Error.PortNotFound",
                                                       "the port is not open");
        }
    } catch (...) {
        reportException("a message");
        g_dbus_method_invocation_return_error_literal(invocation, G_DBUS_ERROR, G_DBUS_ERROR_FAILED,
                                                      "the application failed to handle the message");
    }
}

} // namespace host
