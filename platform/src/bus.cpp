#include "bus.h"

#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include "guard.h"

namespace host {
namespace {

constexpr guint doNotQueue = 4;
constexpr guint primaryOwner = 1;
constexpr guint alreadyOwner = 4;

// Nothing that is registered to run at exit is of use without the bus, and some of it would wait for the daemon.
[[noreturn]] void endProcess(const char* reason) {
    report(std::string("the connection to the bus was lost, the application ends: ") + reason);
    _exit(EXIT_FAILURE);
}

void onClosed(GDBusConnection* /*connection*/, gboolean /*remotePeerVanished*/, GError* error, gpointer /*data*/) {
    endProcess(error != nullptr ? error->message : "it was closed");
}

ObjectPtr<GDBusConnection> connect() {
    g_autoptr(GError) error = nullptr;
    ObjectPtr<GDBusConnection> connection(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, &error));
    if (connection == nullptr) {
        throw HostError(std::string("cannot connect to the device's bus (DBUS_SESSION_BUS_ADDRESS): ") +
                        error->message);
    }
    return connection;
}

ObjectPtr<PlatformBusDaemon> daemonBehind(GDBusConnection* connection) {
    g_autoptr(GError) error = nullptr;
    constexpr auto flags = static_cast<GDBusProxyFlags>(G_DBUS_PROXY_FLAGS_DO_NOT_LOAD_PROPERTIES |
                                                        G_DBUS_PROXY_FLAGS_DO_NOT_CONNECT_SIGNALS);
    ObjectPtr<PlatformBusDaemon> daemon(platform_bus_daemon_proxy_new_sync(connection, flags, "org.freedesktop.DBus",
                                                                           "/org/freedesktop/DBus", nullptr, &error));
    if (daemon == nullptr) {
        throw HostError(std::string("cannot speak to the bus daemon: ") + error->message);
    }
    return daemon;
}

} // namespace

Bus& Bus::get() {
    static Bus bus;
    return bus;
}

Bus::Bus() : connection_(connect()), daemon_(daemonBehind(connection_.get())) {
    g_dbus_connection_set_exit_on_close(connection_.get(), FALSE);
    g_signal_connect(connection_.get(), "closed", G_CALLBACK(onClosed), nullptr);
}

Bus::~Bus() {
    g_signal_handlers_disconnect_by_func(connection_.get(), reinterpret_cast<gpointer>(&onClosed), nullptr);
}

bool Bus::requestName(const std::string& name) {
    g_autoptr(GError) error = nullptr;
    guint outcome = 0;
    if (!platform_bus_daemon_call_request_name_sync(daemon_.get(), name.c_str(), doNotQueue, G_DBUS_CALL_FLAGS_NONE, -1,
                                                    &outcome, nullptr, &error)) {
        check(error);
        throw HostError("cannot take the bus name " + name + ": " + error->message);
    }
    if (outcome != primaryOwner && outcome != alreadyOwner) {
        return false;
    }
    names_.insert(name);
    return true;
}

void Bus::releaseName(const std::string& name) {
    g_autoptr(GError) error = nullptr;
    guint outcome = 0;
    names_.erase(name);
    if (!platform_bus_daemon_call_release_name_sync(daemon_.get(), name.c_str(), G_DBUS_CALL_FLAGS_NONE, -1, &outcome,
                                                    nullptr, &error)) {
        check(error);
        report("cannot release the bus name " + name + ": " + error->message);
    }
}

void Bus::releaseAllNames() {
    for (const std::string& name : std::set<std::string>(names_)) {
        releaseName(name);
    }
}

bool Bus::hasOwner(const std::string& name) {
    if (!g_dbus_is_name(name.c_str())) {
        return false;
    }
    g_autoptr(GError) error = nullptr;
    gboolean owned = FALSE;
    if (!platform_bus_daemon_call_name_has_owner_sync(daemon_.get(), name.c_str(), G_DBUS_CALL_FLAGS_NONE, -1, &owned,
                                                      nullptr, &error)) {
        check(error);
        throw HostError("cannot ask the bus daemon who owns " + name + ": " + error->message);
    }
    return owned != FALSE;
}

bool Bus::isActivatable(const std::string& name) {
    g_autoptr(GError) error = nullptr;
    char** names = nullptr;
    if (!platform_bus_daemon_call_list_activatable_names_sync(daemon_.get(), G_DBUS_CALL_FLAGS_NONE, -1, &names,
                                                              nullptr, &error)) {
        check(error);
        throw HostError(std::string("cannot ask the bus daemon what it can start: ") + error->message);
    }
    const TextListPtr owner(names);
    return g_strv_contains(names, name.c_str()) != FALSE;
}

void Bus::addMatch(const std::string& rule) {
    g_autoptr(GError) error = nullptr;
    if (!platform_bus_daemon_call_add_match_sync(daemon_.get(), rule.c_str(), G_DBUS_CALL_FLAGS_NONE, -1, nullptr,
                                                 &error)) {
        check(error);
        throw HostError("cannot ask for the signals of " + rule + ": " + error->message);
    }
}

void Bus::removeMatch(const std::string& rule) {
    g_autoptr(GError) error = nullptr;
    if (!platform_bus_daemon_call_remove_match_sync(daemon_.get(), rule.c_str(), G_DBUS_CALL_FLAGS_NONE, -1, nullptr,
                                                    &error)) {
        check(error);
        report("cannot take back the signals of " + rule + ": " + error->message);
    }
}

// What goes wrong here has nobody left to care for it.
void Bus::awaitStart(const std::string& name) noexcept {
    guint outcome = 0;
    platform_bus_daemon_call_start_service_by_name_sync(daemon_.get(), name.c_str(), 0, G_DBUS_CALL_FLAGS_NONE,
                                                        G_MAXINT, &outcome, nullptr, nullptr);
}

void Bus::flush() {
    g_autoptr(GError) error = nullptr;
    if (!g_dbus_connection_flush_sync(connection_.get(), nullptr, &error)) {
        check(error);
        throw HostError(std::string("cannot write to the bus: ") + error->message);
    }
}

// A variable alone proves nothing: a shell that runs inside some activated terminal has it too. The address names the
// bus by its unique id.
bool Bus::startedThisProcess() const {
    const char* starter = std::getenv("DBUS_STARTER_ADDRESS");
    const char* guid = g_dbus_connection_get_guid(connection_.get());
    return starter != nullptr && guid != nullptr && std::strstr(starter, guid) != nullptr;
}

void Bus::check(const GError* error) const {
    if (g_dbus_connection_is_closed(connection_.get()) || g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CLOSED) ||
        g_error_matches(error, G_IO_ERROR, G_IO_ERROR_BROKEN_PIPE)) {
        endProcess(error->message);
    }
}

} // namespace host
