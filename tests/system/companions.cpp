#include "companions.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "device/application_ids.h"
#include "device/bus_daemon.h"
#include "host_bus.h"
#include "session/companion_bus.h"
#include "tesk-desk-bus.h"
#include "tesk-host-bus.h"
#include "text_pairs.h"

namespace system_test {
namespace {

constexpr int companionTimeout = 60'000; // milliseconds

constexpr auto plainProxy =
    static_cast<GDBusProxyFlags>(G_DBUS_PROXY_FLAGS_DO_NOT_LOAD_PROPERTIES | G_DBUS_PROXY_FLAGS_DO_NOT_CONNECT_SIGNALS |
                                 G_DBUS_PROXY_FLAGS_DO_NOT_AUTO_START_AT_CONSTRUCTION);

/// Ends the test with the reason when a call on the bus failed.
void require(bool isDone, const std::string& what, GError* error) {
    if (!isDone) {
        throw std::runtime_error(what + ": " + c::takeMessage(error));
    }
}

Entries entriesOf(GVariant* pairs) {
    const c::VariantOwner owner(pairs);
    const auto texts = text_pairs::read(pairs);
    return {texts.begin(), texts.end()};
}

/// Lets the platform take the answers to this process's own requests, which have arrived and wait for the main loop. At
/// the end of the process it would look after those that it knows no answer to.
void takeAnswers() {
    while (g_main_context_iteration(nullptr, FALSE) != FALSE) {
    }
}

c::ObjectOwner<TeskDeskCompanion> companionOf(GDBusConnection* connection, const std::string& id) {
    GError* error = nullptr;
    c::ObjectOwner<TeskDeskCompanion> proxy(tesk_desk_companion_proxy_new_sync(
        connection, plainProxy, id.c_str(), deskwatch::companion_bus::path, nullptr, &error));
    require(proxy != nullptr, "cannot speak to " + id, error);
    return proxy;
}

} // namespace

void PrintTo(const Launch& launch, std::ostream* output) {
    *output << "by " << launch.caller << (launch.waits ? ", waiting, " : ", ")
            << testing::PrintToString(launch.extraData);
}

void Companions::settle(const std::string& id) const {
    GError* error = nullptr;
    const c::ObjectOwner<TeskHostApplication> proxy(tesk_host_application_proxy_new_sync(
        connection(), plainProxy, id.c_str(), host_bus::applicationPath, nullptr, &error));
    require(proxy != nullptr, "cannot speak to " + id, error);
    char** launched = nullptr;
    const bool isDone = tesk_host_application_call_settle_sync(proxy.get(), G_DBUS_CALL_FLAGS_NONE, companionTimeout,
                                                               &launched, nullptr, &error) != FALSE;
    g_strfreev(launched);
    require(isDone, id + " does not settle", error);
    takeAnswers();
}

std::vector<Launch> Companions::launches(const std::string& id) const {
    settle(id);
    GError* error = nullptr;
    GVariant* answer = nullptr;
    const bool isDone =
        tesk_desk_companion_call_launches_sync(companionOf(connection(), id).get(), G_DBUS_CALL_FLAGS_NONE,
                                               companionTimeout, &answer, nullptr, &error) != FALSE;
    require(isDone, id + " does not tell its launches", error);
    const c::VariantOwner list(answer);
    std::vector<Launch> launches;
    GVariantIter iterator;
    g_variant_iter_init(&iterator, list.get());
    const char* caller = nullptr;
    gboolean waits = FALSE;
    GVariant* pairs = nullptr;
    while (g_variant_iter_next(&iterator, "(&sb@a(ayay))", &caller, &waits, &pairs) != FALSE) {
        launches.push_back({caller, waits != FALSE, entriesOf(pairs)});
    }
    return launches;
}

void Companions::answer(const std::string& id, const std::string& result) const {
    GError* error = nullptr;
    const bool isDone =
        tesk_desk_companion_call_answer_sync(companionOf(connection(), id).get(), result.c_str(),
                                             G_DBUS_CALL_FLAGS_NONE, companionTimeout, nullptr, &error) != FALSE;
    require(isDone, id + " does not answer its launch request", error);
    settle(ids::service);
}

bool Companions::isRunning(const std::string& id) const {
    return deskwatch::BusDaemon(connection()).isOwned(id);
}

pid_t Companions::processOf(const std::string& id) const {
    return deskwatch::BusDaemon(connection()).processOf(id).value();
}

GDBusConnection* Companions::connection() const {
    if (connection_ == nullptr) {
        GError* error = nullptr;
        connection_.reset(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, &error));
        require(connection_ != nullptr, "cannot reach " + busAddress_, error);
        g_dbus_connection_set_exit_on_close(connection_.get(), FALSE);
    }
    return connection_.get();
}

} // namespace system_test
