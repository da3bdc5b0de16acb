#include "recording/bus_monitor.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace deskwatch {
namespace {

constexpr int monitorTimeout = 10'000;

/// Nobody's name; to ask who owns one of those in it marks a moment.
const std::string markers = "tesk.desk.marker";

/// Called in the connection's own thread. Keeps every message that comes in, so that nothing here answers it: a monitor
/// that says something is cut off.
GDBusMessage* keep(GDBusConnection* /*connection*/, GDBusMessage* message, gboolean isIncoming, gpointer queue) {
    if (isIncoming == FALSE) {
        return message;
    }
    // the answers to our own calls go on to who waits for them
    const auto type = g_dbus_message_get_message_type(message);
    const bool isAnswer = type == G_DBUS_MESSAGE_TYPE_METHOD_RETURN || type == G_DBUS_MESSAGE_TYPE_ERROR;
    g_async_queue_push(static_cast<GAsyncQueue*>(queue), g_object_ref(message));
    g_main_context_wakeup(nullptr);
    if (isAnswer) {
        return message;
    }
    g_object_unref(message);
    return nullptr;
}

void releaseQueue(gpointer queue) {
    g_async_queue_unref(static_cast<GAsyncQueue*>(queue));
}

/// Whether the message is the question who owns that name.
bool isQuestion(GDBusMessage* message, const std::string& asked) {
    GVariant* body = g_dbus_message_get_body(message);
    const char* member = g_dbus_message_get_member(message);
    if (member == nullptr || std::string(member) != "NameHasOwner" || body == nullptr ||
        g_variant_is_of_type(body, G_VARIANT_TYPE("(s)")) == FALSE) {
        return false;
    }
    const char* name = nullptr;
    g_variant_get(body, "(&s)", &name);
    return asked == name;
}

GVariant* listOf(std::vector<std::string> rules) {
    if (!rules.empty()) {
        rules.push_back("member='NameHasOwner',arg0namespace='" + markers + "'");
    }
    std::vector<const char*> pointers;
    std::transform(rules.begin(), rules.end(), std::back_inserter(pointers),
                   [](const std::string& rule) { return rule.c_str(); });
    return g_variant_new_strv(pointers.data(), static_cast<gssize>(pointers.size()));
}

} // namespace

BusMonitor::BusMonitor(const std::string& address, std::vector<std::string> rules, std::chrono::milliseconds patience)
    : messages_(g_async_queue_new_full(g_object_unref)), connection_(connectToBus(address, patience)) {
    GError* error = nullptr;
    filter_ = g_dbus_connection_add_filter(connection_.get(), keep, g_async_queue_ref(messages_.get()), releaseQueue);
    const c::VariantOwner answer(g_dbus_connection_call_sync(
        connection_.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus.Monitoring",
        "BecomeMonitor", g_variant_new("(@asu)", listOf(std::move(rules)), 0U), nullptr, G_DBUS_CALL_FLAGS_NONE,
        monitorTimeout, nullptr, &error));
    if (answer == nullptr) {
        throw std::runtime_error("cannot watch the bus at " + address + ": " + c::takeMessage(error));
    }
}

BusMonitor::~BusMonitor() {
    if (connection_ != nullptr) {
        g_dbus_connection_remove_filter(connection_.get(), filter_);
        g_dbus_connection_close_sync(connection_.get(), nullptr, nullptr);
    }
}

c::ObjectOwner<GDBusMessage> BusMonitor::next(std::chrono::milliseconds atMost) const {
    const auto wait = std::chrono::duration_cast<std::chrono::microseconds>(atMost).count();
    return c::ObjectOwner<GDBusMessage>(
        static_cast<GDBusMessage*>(g_async_queue_timeout_pop(messages_.get(), static_cast<guint64>(wait))));
}

void BusMonitor::takeUpToNow(const BusDaemon& daemon, const std::function<void(GDBusMessage* message)>& take) {
    const std::string marker = markers + ".n" + std::to_string(++markers_);
    daemon.isOwned(marker); // passes after everything else
    while (const auto message = next(std::chrono::milliseconds(monitorTimeout))) {
        if (isQuestion(message.get(), marker)) {
            return;
        }
        take(message.get());
    }
    throw std::runtime_error("the bus of the watch does not answer its monitor");
}

} // namespace deskwatch
