#include "bus.h"

#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include "guard.h"

namespace host {
namespace {

constexpr int libraryTimeout = -1;
constexpr guint doNotQueue = 4;
constexpr guint primaryOwner = 1;

// Nothing that is registered to run at exit is of use without the bus, and some of it would wait for the daemon.
[[noreturn]] void endProcess(const char* reason) {
    report(std::string("the connection to the bus was lost, the application ends: ") + reason);
    _exit(EXIT_FAILURE);
}

void onClosed(GDBusConnection* /*connection*/, gboolean /*remotePeerVanished*/, GError* error, gpointer /*data*/) {
    endProcess(error != nullptr ? error->message : "it was closed");
}

c::ObjectOwner<GDBusConnection> connect() {
    g_autoptr(GError) error = nullptr;
    c::ObjectOwner<GDBusConnection> connection(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, &error));
    if (connection == nullptr) {
        throw HostError(std::string("cannot connect to the device's bus (DBUS_SESSION_BUS_ADDRESS): ") +
                        error->message);
    }
    return connection;
}

} // namespace

Bus& Bus::get() {
    static Bus bus;
    return bus;
}

Bus::Bus() : connection_(connect()) {
    g_dbus_connection_set_exit_on_close(connection_.get(), FALSE);
    g_signal_connect(connection_.get(), "closed", G_CALLBACK(onClosed), nullptr);
}

Bus::~Bus() {
    g_signal_handlers_disconnect_by_func(connection_.get(), reinterpret_cast<gpointer>(&onClosed), nullptr);
}

// A proxy of the daemon would cost three round trips at every start.
c::VariantOwner Bus::ask(const char* method, GVariant* arguments, const char* answerType, int timeout,
                         GError** error) const {
    c::VariantOwner answer(g_dbus_connection_call_sync(
        connection_.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method, arguments,
        G_VARIANT_TYPE(answerType), G_DBUS_CALL_FLAGS_NONE, timeout, nullptr, error));
    if (error != nullptr && *error != nullptr) {
        check(*error);
    }
    return answer;
}

c::VariantOwner Bus::demand(const char* method, GVariant* arguments, const char* answerType,
                            const std::string& what) const {
    g_autoptr(GError) error = nullptr;
    c::VariantOwner answer = ask(method, arguments, answerType, libraryTimeout, &error);
    if (answer == nullptr) {
        throw HostError("cannot " + what + ": " + error->message);
    }
    return answer;
}

bool Bus::requestName(const std::string& name) {
    const c::VariantOwner answer =
        demand("RequestName", g_variant_new("(su)", name.c_str(), doNotQueue), "(u)", "take the bus name " + name);
    guint outcome = 0;
    g_variant_get(answer.get(), "(u)", &outcome);
    if (outcome != primaryOwner) {
        return false;
    }
    names_.insert(name);
    return true;
}

void Bus::releaseName(const std::string& name) {
    names_.erase(name);
    g_autoptr(GError) error = nullptr;
    if (ask("ReleaseName", g_variant_new("(s)", name.c_str()), "(u)", libraryTimeout, &error) == nullptr) {
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
    const c::VariantOwner answer =
        demand("NameHasOwner", g_variant_new("(s)", name.c_str()), "(b)", "ask the bus daemon who owns " + name);
    gboolean owned = FALSE;
    g_variant_get(answer.get(), "(b)", &owned);
    return owned != FALSE;
}

std::optional<std::string> Bus::ownerOf(const std::string& name) {
    g_autoptr(GError) error = nullptr;
    const c::VariantOwner answer =
        ask("GetNameOwner", g_variant_new("(s)", name.c_str()), "(s)", libraryTimeout, &error);
    if (g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_NAME_HAS_NO_OWNER)) {
        return std::nullopt;
    }
    if (answer == nullptr) {
        throw HostError("cannot ask the bus daemon who owns " + name + ": " + error->message);
    }
    const char* owner = nullptr;
    g_variant_get(answer.get(), "(&s)", &owner);
    return owner;
}

bool Bus::isActivatable(const std::string& name) {
    const c::VariantOwner answer =
        demand("ListActivatableNames", nullptr, "(as)", "ask the bus daemon what it can start");
    char** names = nullptr;
    g_variant_get(answer.get(), "(^as)", &names);
    const c::TextListOwner owner(names);
    return g_strv_contains(names, name.c_str()) != FALSE;
}

// Nobody waits for the daemon's consent: what this process asks it next comes after this.
void Bus::addMatch(const std::string& rule) {
    tell("AddMatch", rule);
}

void Bus::removeMatch(const std::string& rule) {
    tell("RemoveMatch", rule);
}

void Bus::tell(const char* method, const std::string& rule) const {
    g_dbus_connection_call(connection_.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                           method, g_variant_new("(s)", rule.c_str()), nullptr, G_DBUS_CALL_FLAGS_NONE, libraryTimeout,
                           nullptr, nullptr, nullptr);
}

// Nobody is left to act on a failure here.
void Bus::awaitStart(const std::string& name) noexcept {
    ask("StartServiceByName", g_variant_new("(su)", name.c_str(), 0), "(u)", G_MAXINT, nullptr);
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
    return starter != nullptr && std::strstr(starter, g_dbus_connection_get_guid(connection_.get())) != nullptr;
}

void Bus::check(const GError* error) const {
    if (g_dbus_connection_is_closed(connection_.get()) || g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CLOSED) ||
        g_error_matches(error, G_IO_ERROR, G_IO_ERROR_BROKEN_PIPE)) {
        endProcess(error->message);
    }
}

} // namespace host
