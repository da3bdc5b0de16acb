#include "session/device_session.h"

#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <optional>

#include "device/application_ids.h"
#include "device/bus_connection.h"
#include "device/patience.h"
#include "host_bus.h"

namespace deskwatch {
namespace {

void becomeApplication(const Device& device, const std::string& id) {
    device.requireBooted();
    for (const auto& [name, value] : device.appEnvironment(id)) {
        setenv(name.c_str(), value.c_str(), 1);
    }
}

/// Asks an application, which is started if it is not running. Returns nothing on a time-out.
std::optional<std::vector<std::string>> settled(GDBusConnection* connection, const std::string& id,
                                                std::chrono::milliseconds atMost) {
    GError* error = nullptr;
    const c::VariantOwner answer(g_dbus_connection_call_sync(
        connection, id.c_str(), host_bus::applicationPath, "tesk.host.Application", "Settle", nullptr,
        G_VARIANT_TYPE("(as)"), G_DBUS_CALL_FLAGS_NONE, inMilliseconds(atMost), nullptr, &error));
    if (answer == nullptr) {
        const bool isLate = g_error_matches(error, G_IO_ERROR, G_IO_ERROR_TIMED_OUT) != FALSE;
        const bool hasEnded = g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_NO_REPLY) != FALSE;
        const auto reason = c::takeMessage(error);
        return isLate ? std::nullopt : throw std::runtime_error(hasEnded ? "it has ended meanwhile" : reason);
    }
    char** launched = nullptr;
    g_variant_get(answer.get(), "(^as)", &launched);
    const c::TextListOwner owner(launched);
    return std::vector<std::string>(launched, launched + g_strv_length(launched));
}

/// What is not there now is not waited for at the end of this process either.
void forgetStarts() {
    setenv(host_bus::startsForgottenVariable, "1", 1);
}

} // namespace

// Connected before the platform's handler, which would end the process with a message meant for an application.
void DeviceSession::onClosed(GDBusConnection* /*connection*/, gboolean /*isVanished*/, GError* /*error*/,
                             gpointer onEnd) {
    const auto& [folder, status] = **static_cast<const std::shared_ptr<OnEnd>*>(onEnd);
    std::cerr << "deskwatch: " << folder << " has been switched off\n" << std::flush;
    _exit(status); // exit handlers are useless without the bus
}

DeviceSession::DeviceSession(const Device& device, const std::string& applicationId)
    : device_(device), onEnd_(std::make_shared<OnEnd>(OnEnd{device.layout().folder().string()})) {
    becomeApplication(device, applicationId);
    // The connection that the platform uses, too: the bus keeps the order of what comes from one connection.
    connection_ = connectInTime(device.busAddress(), device.patience(), [](GCancellable* cancellable, GError** error) {
        return g_bus_get_sync(G_BUS_TYPE_SESSION, cancellable, error);
    });
    g_dbus_connection_set_exit_on_close(connection_.get(), FALSE);
    const auto release = [](gpointer onEnd, GClosure*) { delete static_cast<std::shared_ptr<OnEnd>*>(onEnd); };
    g_signal_connect_data(connection_.get(), "closed", G_CALLBACK(onClosed), new std::shared_ptr<OnEnd>(onEnd_),
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
    std::vector<std::string> ids;
    const auto ask = [&](std::chrono::milliseconds atMost) {
        const auto answer =
            settled(connection_.get(), id, atMost); // an earlier question still stands, and comes before
        if (!answer && !daemon().isOwned(id) && !device_.hasProgramOf(id)) {
            throw std::runtime_error("its program has ended without a word"); // the bus waits for what a daemon leaves
        }
        ids = answer.value_or(ids);
        return answer.has_value();
    };
    try {
        const auto untilNotice = daemon().isOwned(id) ? noticeOfWork : noticeOfStart;
        if (tryPatiently(device_.patience(), untilNotice, id + ", which has not answered", ask)) {
            return ids;
        }
    } catch (const std::runtime_error& error) {
        forgetStarts();
        throw std::runtime_error(id + " does not answer, see " + device_.layout().log().string() + ": " + error.what());
    }
    forgetStarts();
    throw NoAnswer(id, device_.patience());
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
