#include "device/bus_daemon.h"

#include <unistd.h>

#include <stdexcept>

#include "device/patience.h"
#include "device/timer.h"

namespace deskwatch {
namespace {

[[noreturn]] void fail(const std::string& method, GError* error) {
    throw std::runtime_error("the bus daemon does not answer " + method + ": " + c::takeMessage(error));
}

void onAppeared(GDBusConnection* /*connection*/, const char* /*name*/, const char* /*owner*/, gpointer isOwned) {
    *static_cast<bool*>(isOwned) = true;
}

} // namespace

std::vector<std::string> BusDaemon::ownedNames() const {
    GError* error = nullptr;
    const auto answer = call("ListNames", nullptr, "(as)", &error);
    if (answer == nullptr) {
        fail("ListNames", error);
    }
    const c::VariantOwner list(g_variant_get_child_value(answer.get(), 0));
    std::vector<std::string> names;
    GVariantIter iterator;
    g_variant_iter_init(&iterator, list.get());
    const char* name = nullptr;
    while (g_variant_iter_next(&iterator, "&s", &name) != FALSE) {
        if (*name != ':' && std::string("org.freedesktop.DBus") != name) {
            names.emplace_back(name);
        }
    }
    return names;
}

bool BusDaemon::isOwned(const std::string& name) const {
    const auto answer = ask("NameHasOwner", name, "(b)");
    gboolean isOwned = FALSE;
    g_variant_get(answer.get(), "(b)", &isOwned);
    return isOwned != FALSE;
}

std::optional<std::string> BusDaemon::ownerOf(const std::string& name) const {
    const auto answer = ask("GetNameOwner", name, "(s)");
    if (answer == nullptr) {
        return std::nullopt;
    }
    const char* owner = nullptr;
    g_variant_get(answer.get(), "(&s)", &owner);
    return owner;
}

std::optional<pid_t> BusDaemon::processOf(const std::string& name) const {
    const auto answer = ask("GetConnectionUnixProcessID", name, "(u)");
    if (answer == nullptr) {
        return std::nullopt;
    }
    guint32 process = 0;
    g_variant_get(answer.get(), "(u)", &process);
    return static_cast<pid_t>(process);
}

std::vector<ProcessHandle> BusDaemon::applicationProcesses() const {
    std::vector<ProcessHandle> processes;
    for (const auto& name : ownedNames()) {
        const auto pid = processOf(name);
        auto process = pid && *pid != getpid() ? ProcessHandle::open(*pid) : std::nullopt;
        if (process) {
            processes.push_back(std::move(*process));
        }
    }
    return processes;
}

bool BusDaemon::awaitOwner(const std::string& name, std::chrono::milliseconds atMost) const {
    bool isOwned = false;
    const guint watcher = g_bus_watch_name_on_connection(connection_, name.c_str(), G_BUS_NAME_WATCHER_FLAGS_NONE,
                                                         onAppeared, nullptr, &isOwned, nullptr);
    Timer timer;
    timer.start(atMost, [] {}); // its end wakes the loop
    while (!isOwned && timer.isRunning()) {
        g_main_context_iteration(nullptr, TRUE);
    }
    g_bus_unwatch_name(watcher);
    return isOwned;
}

c::VariantOwner BusDaemon::call(const char* method, GVariant* arguments, const char* answerType, GError** error) const {
    return c::VariantOwner(g_dbus_connection_call_sync(
        connection_, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method, arguments,
        G_VARIANT_TYPE(answerType), G_DBUS_CALL_FLAGS_NONE, inMilliseconds(patience_), nullptr, error));
}

/// The answer to a question about a name; none when nobody owns it.
c::VariantOwner BusDaemon::ask(const char* method, const std::string& name, const char* answerType) const {
    GError* error = nullptr;
    auto answer = call(method, g_variant_new("(s)", name.c_str()), answerType, &error);
    if (g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_NAME_HAS_NO_OWNER) != FALSE) {
        g_clear_error(&error);
    } else if (answer == nullptr) {
        fail(method, error);
    }
    return answer;
}

} // namespace deskwatch
