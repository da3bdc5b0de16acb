#include "session/platform_events.h"

#include <stdexcept>

#include "c_owners.h"
#include "device/application_ids.h"
#include "host_bus.h"
#include "session/device_session.h"
#include "session/observer.h"
#include "tesk-host-bus.h"

namespace deskwatch {
namespace {

constexpr char diagnosticName[] = "tesk.consumer.test";
constexpr char diagnosticPath[] = "/tesk/consumer/test";
constexpr int eventTimeout = 20'000; // milliseconds

void send(GDBusConnection* connection, app_event_type_e type) {
    const c::ObjectOwner<TeskHostSystem> system(tesk_host_system_skeleton_new());
    GError* error = nullptr;
    if (g_dbus_interface_skeleton_export(G_DBUS_INTERFACE_SKELETON(system.get()), connection, host_bus::systemPath,
                                         &error) == FALSE) {
        throw std::runtime_error("cannot announce the event: " + c::takeMessage(error));
    }
    tesk_host_system_emit_event(system.get(), type);
    if (g_dbus_connection_flush_sync(connection, nullptr, &error) == FALSE) {
        throw std::runtime_error("cannot announce the event: " + c::takeMessage(error));
    }
}

/// Waits until the service's name for diagnosis is there: it asks for it when it starts, and the answer comes later.
class DiagnosticName {
public:
    static void await(GDBusConnection* connection) {
        DiagnosticName name;
        const guint watcher = g_bus_watch_name_on_connection(connection, diagnosticName, G_BUS_NAME_WATCHER_FLAGS_NONE,
                                                             onAppeared, nullptr, &name, nullptr);
        const guint timer = g_timeout_add(eventTimeout, onLate, &name);
        g_main_loop_run(name.loop_.get());
        g_bus_unwatch_name(watcher);
        if (!name.isThere_) {
            throw std::runtime_error(std::string("the service does not own ") + diagnosticName);
        }
        g_source_remove(timer);
    }

private:
    static void onAppeared(GDBusConnection* /*connection*/, const char* /*name*/, const char* /*owner*/,
                           gpointer self) {
        static_cast<DiagnosticName*>(self)->isThere_ = true;
        g_main_loop_quit(static_cast<DiagnosticName*>(self)->loop_.get());
    }

    static gboolean onLate(gpointer self) {
        g_main_loop_quit(static_cast<DiagnosticName*>(self)->loop_.get());
        return G_SOURCE_REMOVE;
    }

    c::MainLoopOwner loop_{g_main_loop_new(nullptr, FALSE)};
    bool isThere_ = false;
};

} // namespace

void announceEvent(const Device& device, app_event_type_e type) {
    const DeviceSession session(device, observerId);
    send(session.connection(), type);
    session.settleService();
}

int callDiagnosticMethod(const Device& device, const std::string& method, std::optional<int> value) {
    const DeviceSession session(device, observerId);
    session.settle(ids::service);
    DiagnosticName::await(session.connection());
    GError* error = nullptr;
    const c::VariantOwner answer(g_dbus_connection_call_sync(
        session.connection(), diagnosticName, diagnosticPath, diagnosticName, method.c_str(),
        value ? g_variant_new("(i)", *value) : nullptr, G_VARIANT_TYPE("(i)"), G_DBUS_CALL_FLAGS_NO_AUTO_START,
        eventTimeout, nullptr, &error));
    if (g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_INVALID_ARGS) != FALSE) {
        g_clear_error(&error);
        throw std::runtime_error(method + (value ? " takes no value" : " takes a value"));
    }
    if (answer == nullptr) {
        throw std::runtime_error("the service does not answer " + method + ": " + c::takeMessage(error));
    }
    session.settleService();
    int result = 0;
    g_variant_get(answer.get(), "(i)", &result);
    return result;
}

} // namespace deskwatch
