#include "session/device_session.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <optional>

#include "device/application_ids.h"
#include "host_bus.h"
#include "tesk-host-bus.h"

namespace deskwatch {
namespace {

/// Nothing that works takes so long. Whoever waits longer is told what for.
constexpr std::chrono::milliseconds untilNotice{1'000};

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

c::ObjectOwner<TeskHostApplication> applicationOf(GDBusConnection* connection, const std::string& id) {
    const auto flags = static_cast<GDBusProxyFlags>(G_DBUS_PROXY_FLAGS_DO_NOT_LOAD_PROPERTIES |
                                                    G_DBUS_PROXY_FLAGS_DO_NOT_CONNECT_SIGNALS);
    GError* error = nullptr;
    c::ObjectOwner<TeskHostApplication> application(tesk_host_application_proxy_new_sync(
        connection, flags, id.c_str(), host_bus::applicationPath, nullptr, &error));
    if (application == nullptr) {
        throw std::runtime_error("cannot speak to " + id + ": " + c::takeMessage(error));
    }
    return application;
}

/// Asks once. None when there is no answer in time.
std::optional<std::vector<std::string>> settled(TeskHostApplication* application, std::chrono::milliseconds atMost) {
    char** launched = nullptr;
    GError* error = nullptr;
    if (tesk_host_application_call_settle_sync(application, G_DBUS_CALL_FLAGS_NONE, static_cast<int>(atMost.count()),
                                               &launched, nullptr, &error) == FALSE) {
        const bool isLate = g_error_matches(error, G_IO_ERROR, G_IO_ERROR_TIMED_OUT) != FALSE;
        const auto reason = c::takeMessage(error);
        return isLate ? std::nullopt : throw std::runtime_error(reason);
    }
    std::vector<std::string> ids;
    for (char** entry = launched; *entry != nullptr; ++entry) {
        ids.emplace_back(*entry);
    }
    g_strfreev(launched);
    return ids;
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
    auto ids = awaitSettled(id);
    // The platform hears from the main loop that an application started anew, and reaches it only then.
    while (g_main_context_iteration(nullptr, FALSE) != FALSE) {
    }
    return ids;
}

std::vector<std::string> DeviceSession::awaitSettled(const std::string& id) const {
    const std::chrono::milliseconds patience = device_.patience();
    const auto first = std::min(patience, untilNotice);
    try {
        const auto application = applicationOf(connection_.get(), id);
        auto ids = settled(application.get(), first);
        if (!ids && patience > first) {
            std::cerr << "deskwatch: waiting for " << id << ", which has not answered for a second\n" << std::flush;
            ids = settled(application.get(), patience - first); // the first question still stands, and comes before
        }
        if (ids) {
            return *ids;
        }
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(id + " does not answer, see " + device_.layout().log().string() + ": " + error.what());
    }
    throw NoAnswer(id + " has not answered for " + std::to_string(device_.patience().count()) +
                   " seconds (--timeout); end what hangs with: deskwatch off --force");
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
