#include "device/bus_client.h"

#include <stdexcept>

namespace deskwatch {
namespace {

constexpr std::chrono::seconds daemonTimeout{10};

BusClient::Method busMethod(const char* name) {
    return {"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", name};
}

} // namespace

BusClient::BusClient(const std::string& address) {
    GError* error = nullptr;
    const auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                         G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    connection_.reset(g_dbus_connection_new_for_address_sync(address.c_str(), flags, nullptr, nullptr, &error));
    if (connection_ == nullptr) {
        throw std::runtime_error("cannot reach the bus at " + address + ": " + c::takeMessage(error));
    }
}

c::VariantOwner BusClient::call(const Method& method, GVariant* arguments, std::chrono::milliseconds atMost) const {
    GError* error = nullptr;
    c::VariantOwner answer(g_dbus_connection_call_sync(
        connection_.get(), method.owner.c_str(), method.path.c_str(), method.interface.c_str(), method.name.c_str(),
        arguments, nullptr, G_DBUS_CALL_FLAGS_NONE, static_cast<int>(atMost.count()), nullptr, &error));
    if (answer == nullptr) {
        throw std::runtime_error("no answer to " + method.name + " from " + method.owner + ": " +
                                 c::takeMessage(error));
    }
    return answer;
}

std::vector<std::string> BusClient::ownedNames() const {
    const auto answer = call(busMethod("ListNames"), nullptr, daemonTimeout);
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

std::vector<ProcessHandle> BusClient::applicationProcesses() const {
    std::vector<ProcessHandle> processes;
    for (const auto& name : ownedNames()) {
        c::VariantOwner answer;
        try {
            answer = call(busMethod("GetConnectionUnixProcessID"), g_variant_new("(s)", name.c_str()), daemonTimeout);
        } catch (const std::runtime_error&) {
            continue; // it has gone since the list was made
        }
        guint32 pid = 0;
        g_variant_get(answer.get(), "(u)", &pid);
        auto process = ProcessHandle::open(static_cast<pid_t>(pid));
        if (process && process->pid() != getpid()) {
            processes.push_back(std::move(*process));
        }
    }
    return processes;
}

} // namespace deskwatch
