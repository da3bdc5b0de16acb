#include "session/platform_events.h"

#include <csignal>
#include <stdexcept>

#include "device/application_ids.h"
#include "host_bus.h"
#include "session/device_session.h"
#include "session/observer.h"
#include "tesk-host-bus.h"

namespace deskwatch {
namespace {

constexpr char diagnosticName[] = "tesk.consumer.test";
constexpr char diagnosticPath[] = "/tesk/consumer/test";

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

} // namespace

void announceEvent(const Device& device, app_event_type_e type) {
    const DeviceSession session(device, observerId);
    send(session.connection(), type);
    session.settleService();
}

int callDiagnosticMethod(const Device& device, const std::string& method, std::optional<int> value) {
    const DeviceSession session(device, observerId);
    session.settle(ids::service);
    // the service asks for that name when it starts, and gets it later
    if (!session.daemon().awaitOwner(diagnosticName, device.patience())) {
        throw std::runtime_error(std::string("the service does not own the bus name ") + diagnosticName);
    }
    GError* error = nullptr;
    const c::VariantOwner answer(g_dbus_connection_call_sync(
        session.connection(), diagnosticName, diagnosticPath, diagnosticName, method.c_str(),
        value ? g_variant_new("(i)", *value) : nullptr, G_VARIANT_TYPE("(i)"), G_DBUS_CALL_FLAGS_NO_AUTO_START,
        static_cast<int>(std::chrono::milliseconds(device.patience()).count()), nullptr, &error));
    if (answer == nullptr) {
        throw std::runtime_error("the service does not answer " + method + ": " + c::takeMessage(error));
    }
    session.settleService();
    int result = 0;
    g_variant_get(answer.get(), "(i)", &result);
    return result;
}

bool killService(const Device& device) {
    const DeviceSession session(device, observerId);
    const auto pid = session.daemon().processOf(ids::service);
    const auto service = pid ? ProcessHandle::open(*pid) : std::nullopt;
    if (!service) {
        return false;
    }
    service->signal(SIGKILL);
    if (!service->waitForEnd(device.patience())) {
        throw std::runtime_error("the service does not end");
    }
    return true;
}

} // namespace deskwatch
