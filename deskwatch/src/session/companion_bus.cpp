#include "session/companion_bus.h"

#include <stdexcept>

namespace deskwatch::companion_bus {

c::ObjectOwner<TeskDeskCompanion> companionOf(GDBusConnection* bus, const std::string& application) {
    constexpr auto flags = static_cast<GDBusProxyFlags>(G_DBUS_PROXY_FLAGS_DO_NOT_LOAD_PROPERTIES |
                                                        G_DBUS_PROXY_FLAGS_DO_NOT_CONNECT_SIGNALS |
                                                        G_DBUS_PROXY_FLAGS_DO_NOT_AUTO_START_AT_CONSTRUCTION);
    GError* error = nullptr;
    c::ObjectOwner<TeskDeskCompanion> companion(
        tesk_desk_companion_proxy_new_sync(bus, flags, application.c_str(), path, nullptr, &error));
    if (companion == nullptr) {
        throw std::runtime_error("cannot speak to " + application + ": " + c::takeMessage(error));
    }
    return companion;
}

} // namespace deskwatch::companion_bus
