#include <cerrno>
#include <memory>
#include <unordered_map>

#include "bus.h"
#include "bus_values.h"
#include "guard.h"
#include "host_bus.h"
#include "platform-bus.h"
#include "service_app.h"

using host::Bus;
using host::guarded;

struct app_event_info {
    app_event_type_e type;
};

struct app_event_handler {
    app_event_type_e type;
    app_event_cb callback;
    void* userData;
};

namespace {

void onEvent(GDBusConnection* /*connection*/, const char* /*sender*/, const char* /*path*/, const char* /*interface*/,
             const char* /*signal*/, GVariant* arguments, gpointer data) {
    const auto* handler = static_cast<app_event_handler*>(data);
    if (host::intArgumentOf(arguments) == handler->type) {
        app_event_info info{handler->type};
        handler->callback(&info, handler->userData);
    }
}

void release(gpointer handler) {
    delete static_cast<app_event_handler*>(handler);
}

// The handlers that were not removed yet. They belong to their bus subscriptions, which release them once no call to
// them is under way.
std::unordered_map<app_event_handler_h, guint>& subscriptions() {
    static std::unordered_map<app_event_handler_h, guint> instance;
    return instance;
}

// Any process of the device may announce an event, so the signal is taken from whoever sends it.
void subscribe(const Bus& bus, std::unique_ptr<app_event_handler> owned) {
    app_event_handler* handler = owned.release();
    const GDBusInterfaceInfo* interface = platform_bus_system_interface_info();
    subscriptions()[handler] = g_dbus_connection_signal_subscribe(
        bus.connection(), nullptr, interface->name, interface->signals[0]->name, host_bus::systemPath, nullptr,
        G_DBUS_SIGNAL_FLAGS_NONE, onEvent, handler, release);
}

} // namespace

int service_app_add_event_handler(app_event_handler_h* handler, app_event_type_e event_type, app_event_cb callback,
                                  void* user_data) {
    if (handler == nullptr || callback == nullptr || event_type < APP_EVENT_LOW_MEMORY ||
        event_type > APP_EVENT_SUSPENDED_STATE_CHANGED) {
        return -EINVAL;
    }
    return guarded(__func__, -EIO, [&] {
        auto added = std::make_unique<app_event_handler>(app_event_handler{event_type, callback, user_data});
        app_event_handler_h addedHandle = added.get();
        subscribe(Bus::get(), std::move(added));
        *handler = addedHandle;
        return 0;
    });
}

int service_app_remove_event_handler(app_event_handler_h event_handler) {
    return guarded(__func__, -EIO, [&] {
        const auto found = subscriptions().find(event_handler);
        if (found == subscriptions().end()) {
            return -EINVAL;
        }
        const guint subscription = found->second;
        subscriptions().erase(found);
        g_dbus_connection_signal_unsubscribe(Bus::get().connection(), subscription);
        return 0;
    });
}
