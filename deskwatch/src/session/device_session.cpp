#include "session/device_session.h"

#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <stdexcept>

#include "device/application_ids.h"
#include "host_bus.h"
#include "tesk-host-bus.h"

namespace deskwatch {
namespace {

/// Longer than the bus waits for a program to come up, and than the service waits for a locked database.
constexpr int settleTimeout = 120'000;

void becomeApplication(const Device& device, const std::string& id) {
    device.requireBooted();
    for (const auto& [name, value] : device.appEnvironment(id)) {
        setenv(name.c_str(), value.c_str(), 1);
    }
}

// Connected before the platform's handler, which would end the process with a message meant for an application.
[[noreturn]] void onClosed(GDBusConnection* /*connection*/, gboolean /*remotePeerVanished*/, GError* /*error*/,
                           gpointer folder) {
    std::cerr << "deskwatch: " << static_cast<const char*>(folder) << " has been switched off\n" << std::flush;
    _exit(EXIT_FAILURE); // exit handlers are useless without the bus
}

void release(gpointer folder, GClosure* /*closure*/) {
    g_free(folder);
}

} // namespace

DeviceSession::DeviceSession(const Device& device, const std::string& applicationId) : device_(device) {
    becomeApplication(device, applicationId);
    GError* error = nullptr;
    // The connection that the platform uses, too: the bus keeps the order of what comes from one connection.
    connection_.reset(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, &error));
    if (connection_ == nullptr) {
        throw std::runtime_error("cannot reach the bus of " + device.layout().folder().string() + ": " +
                                 c::takeMessage(error));
    }
    g_dbus_connection_set_exit_on_close(connection_.get(), FALSE);
    g_signal_connect_data(connection_.get(), "closed", G_CALLBACK(onClosed), g_strdup(device.layout().folder().c_str()),
                          release, GConnectFlags{});
}

std::vector<std::string> DeviceSession::settle(const std::string& id) const {
    const auto flags = static_cast<GDBusProxyFlags>(G_DBUS_PROXY_FLAGS_DO_NOT_LOAD_PROPERTIES |
                                                    G_DBUS_PROXY_FLAGS_DO_NOT_CONNECT_SIGNALS);
    GError* error = nullptr;
    const c::ObjectOwner<TeskHostApplication> proxy(tesk_host_application_proxy_new_sync(
        connection_.get(), flags, id.c_str(), host_bus::applicationPath, nullptr, &error));
    char** launched = nullptr;
    if (proxy == nullptr || tesk_host_application_call_settle_sync(proxy.get(), G_DBUS_CALL_FLAGS_NONE, settleTimeout,
                                                                   &launched, nullptr, &error) == FALSE) {
        throw std::runtime_error(id + " does not answer, see " + device_.layout().log().string() + ": " +
                                 c::takeMessage(error));
    }
    std::vector<std::string> ids;
    for (char** entry = launched; *entry != nullptr; ++entry) {
        ids.emplace_back(*entry);
    }
    g_strfreev(launched);
    // The platform hears from the main loop that an application started anew, and reaches it only then.
    while (g_main_context_iteration(nullptr, FALSE) != FALSE) {
    }
    return ids;
}

void DeviceSession::settleService() const {
    if (!daemon().isOwned(ids::service)) {
        return;
    }
    for (const auto& id : settle(ids::service)) {
        settle(id);
    }
}

} // namespace deskwatch
