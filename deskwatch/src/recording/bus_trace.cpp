#include "recording/bus_trace.h"

#include <app_common.h>

#include <algorithm>
#include <array>

#include "c_owners.h"
#include "device/application_ids.h"
#include "device/plain_text.h"
#include "host_bus.h"
#include "message_size.h"
#include "recording/recorded_text.h"
#include "recording/recorded_value.h"
#include "text_pairs.h"

namespace deskwatch {
namespace {

std::string textOf(const char* text) {
    return text != nullptr ? text : "";
}

c::VariantOwner child(GVariant* tuple, gsize index) {
    return c::VariantOwner(g_variant_get_child_value(tuple, index));
}

bool isBodyOf(GDBusMessage* message, const char* type) {
    GVariant* body = g_dbus_message_get_body(message);
    return body != nullptr && g_variant_is_of_type(body, G_VARIANT_TYPE(type)) != FALSE;
}

bool isKnownApplication(const std::string& name) {
    return name == ids::service ||
           std::find(ids::companions.begin(), ids::companions.end(), name) != ids::companions.end();
}

const std::string faultsPath = std::string("/faults/") + ids::service + "/";
constexpr char policyPath[] = "/dpm/";

constexpr std::array<std::pair<int, const char*>, 3> systemEvents{
    {{APP_EVENT_LOW_MEMORY, "low memory"},
     {APP_EVENT_LOW_BATTERY, "low battery"},
     {APP_EVENT_DEVICE_ORIENTATION_CHANGED, "orientation changed"}}};

/// Who registered as administrator is a number of the machine, not of the watch.
constexpr char registrationsPath[] = "/dpm/clients/";

} // namespace

bool isRegistration(const std::string& path) {
    return startsWith(path, registrationsPath);
}

TraceEvent settingOf(const std::string& path, GVariant* value) {
    return isRegistration(path) && value != nullptr ? TraceEvent(registered) : recordedValue(value);
}

TraceEvent recordedEntries(GVariant* pairs) {
    TraceEvent entries = TraceEvent::object();
    for (const auto& [key, value] : text_pairs::read(pairs)) {
        entries[recordedText(key)] = recordedText(value);
    }
    return entries;
}

GVariant* entriesOfRecorded(const TraceEvent& entries) {
    std::vector<std::pair<std::string, std::string>> texts;
    for (const auto& [key, value] : entries.items()) {
        texts.emplace_back(textOfRecorded(key), textOfRecorded(value.get<std::string>()));
    }
    return text_pairs::toVariant(texts);
}

BusTrace::BusTrace(const BusDaemon& daemon, Sink sink) : sink_(std::move(sink)) {
    for (const auto& name : daemon.ownedNames()) {
        const auto owner = isKnownApplication(name) ? daemon.ownerOf(name) : std::nullopt;
        if (owner) {
            owners_[*owner] = name;
        }
    }
}

std::vector<std::string> BusTrace::rulesOfEffects() {
    return {"type='method_call',interface='tesk.host.Application',member='Launch'",
            "type='method_call',interface='tesk.host.MessagePort',member='Send'",
            "type='method_call',interface='ca.desrt.dconf.Writer',member='Change'",
            "type='method_call',interface='org.freedesktop.DBus',member='ReleaseName'",
            "type='signal',interface='tesk.host.System',member='Wiped'",
            "type='signal',interface='org.freedesktop.DBus',member='NameOwnerChanged'"};
}

void BusTrace::take(GDBusMessage* message) {
    switch (g_dbus_message_get_message_type(message)) {
    case G_DBUS_MESSAGE_TYPE_METHOD_CALL:
        takeCall(message);
        break;
    case G_DBUS_MESSAGE_TYPE_METHOD_RETURN:
    case G_DBUS_MESSAGE_TYPE_ERROR:
        takeReply(message);
        break;
    case G_DBUS_MESSAGE_TYPE_SIGNAL:
        takeOwnerChange(message);
        takeSystemSignal(message);
        break;
    default:
        break;
    }
}

void BusTrace::takeCall(GDBusMessage* message) {
    const std::string interface = textOf(g_dbus_message_get_interface(message));
    const std::string member = textOf(g_dbus_message_get_member(message));
    if (interface == "tesk.host.Application" && member == "Launch" && isBodyOf(message, "(sa(ayay)b)")) {
        takeLaunch(message);
    } else if (interface == "tesk.host.MessagePort" && member == "Send" && isBodyOf(message, "(ssa(ayay))")) {
        takePortMessage(message);
    } else if (interface == "ca.desrt.dconf.Writer" && member == "Change" && isBodyOf(message, "(ay)")) {
        takeChanges(message);
    } else if (interface == "tesk.consumer.test") {
        takeDiagnosis(message);
    } else if (member == "ReleaseName" && isService(g_dbus_message_get_sender(message))) {
        isServiceLeaving_ = true;
    }
}

void BusTrace::takeDiagnosis(GDBusMessage* message) {
    TraceEvent event{{"around", "call"}, {"method", g_dbus_message_get_member(message)}};
    if (isBodyOf(message, "(i)")) {
        event["value"] = g_variant_get_int32(child(g_dbus_message_get_body(message), 0).get());
    }
    sink_(event);
}

void BusTrace::takeLaunch(GDBusMessage* message) {
    GVariant* body = g_dbus_message_get_body(message);
    const auto extraData = recordedEntries(child(body, 1).get());
    const std::string target = nameOf(g_dbus_message_get_destination(message));
    if (target == ids::service) {
        sink_({{"in", "launch"},
               {"from", g_variant_get_string(child(body, 0).get(), nullptr)},
               {"extraData", extraData}});
        return;
    }
    const char* sender = g_dbus_message_get_sender(message);
    if (!isService(sender)) {
        return;
    }
    const bool isReplyWanted = g_variant_get_boolean(child(body, 2).get()) != FALSE;
    waiting_[{sender, g_dbus_message_get_serial(message)}] = isReplyWanted ? target : "";
    sink_({{"out", "launch"}, {"to", target}, {"replyWanted", isReplyWanted}, {"extraData", extraData}});
}

void BusTrace::takePortMessage(GDBusMessage* message) {
    GVariant* body = g_dbus_message_get_body(message);
    const std::string target = nameOf(g_dbus_message_get_destination(message));
    const TraceEvent port = g_variant_get_string(child(body, 0).get(), nullptr);
    const TraceEvent entries = recordedEntries(child(body, 2).get());
    if (target == ids::service) {
        const TraceEvent sender = g_variant_get_string(child(body, 1).get(), nullptr);
        const bool isRefused = message_size::of(text_pairs::read(child(body, 2).get())) > message_size::limit;
        sink_({{isRefused ? "refused" : "in", "message"}, {"from", sender}, {"port", port}, {"entries", entries}});
    } else if (isService(g_dbus_message_get_sender(message))) {
        sink_({{"out", "message"}, {"to", target}, {"port", port}, {"entries", entries}});
    }
}

void BusTrace::takeChanges(GDBusMessage* message) {
    const bool isOwn = isService(g_dbus_message_get_sender(message));
    const auto bytes = child(g_dbus_message_get_body(message), 0);
    const c::VariantOwner changes(
        g_variant_ref_sink(g_variant_new_from_data(G_VARIANT_TYPE("a{smv}"), g_variant_get_data(bytes.get()),
                                                   g_variant_get_size(bytes.get()), FALSE, nullptr, nullptr)));
    // What changes in one step has no order of its own.
    std::map<std::string, c::VariantOwner> values;
    GVariantIter iterator;
    g_variant_iter_init(&iterator, changes.get());
    const char* changedKey = nullptr;
    GVariant* changed = nullptr;
    while (g_variant_iter_next(&iterator, "{&smv}", &changedKey, &changed) != FALSE) {
        values[changedKey].reset(changed);
    }
    for (const auto& [key, value] : values) {
        if (startsWith(key, host_bus::keyMarksPath)) {
            continue; // goes with the key
        }
        if (isOwn) {
            sink_({{"out", "write"}, {"key", key}, {"value", settingOf(key, value.get())}});
        } else if (startsWith(key, host_bus::sharedKeysPath) || startsWith(key, policyPath)) {
            sink_({{"in", "key"}, {"key", key}, {"value", settingOf(key, value.get())}});
        } else if (startsWith(key, faultsPath)) {
            takeFault(key, value.get());
        }
    }
}

void BusTrace::takeFault(const std::string& key, GVariant* value) {
    const auto name = key.substr(key.rfind('/') + 1);
    TraceEvent event{{"around", "fault"},
                     {"function", name.empty() ? everyFunction : name},
                     {"code", nullptr}, // all faults are removed by their folder
                     {"nth", 0}};
    if (value != nullptr && g_variant_is_of_type(value, G_VARIANT_TYPE("(ii)")) != FALSE) {
        event["code"] = g_variant_get_int32(child(value, 0).get());
        event["nth"] = g_variant_get_int32(child(value, 1).get());
    }
    sink_(event);
}

std::optional<int> systemEventOf(const std::string& name) {
    const auto* known = std::find_if(systemEvents.begin(), systemEvents.end(),
                                     [&name](const auto& event) { return event.second == name; });
    return known != systemEvents.end() ? std::optional(known->first) : wholeNumber(name);
}

void BusTrace::takeSystemSignal(GDBusMessage* message) {
    if (textOf(g_dbus_message_get_interface(message)) != "tesk.host.System") {
        return;
    }
    if (isBodyOf(message, "(s)") && isService(g_dbus_message_get_sender(message))) {
        const auto storage = child(g_dbus_message_get_body(message), 0);
        sink_({{"out", "wipe"}, {"storage", g_variant_get_string(storage.get(), nullptr)}});
    }
    if (!isBodyOf(message, "(i)")) {
        return;
    }
    const int type = g_variant_get_int32(child(g_dbus_message_get_body(message), 0).get());
    const auto* known = std::find_if(systemEvents.begin(), systemEvents.end(),
                                     [type](const auto& event) { return event.first == type; });
    sink_({{"around", "event"}, {"type", known != systemEvents.end() ? known->second : std::to_string(type).c_str()}});
}

void BusTrace::takeReply(GDBusMessage* message) {
    if (!isService(g_dbus_message_get_destination(message)) || !isBodyOf(message, "(ia(ayay))")) {
        return;
    }
    const auto call =
        waiting_.find({textOf(g_dbus_message_get_destination(message)), g_dbus_message_get_reply_serial(message)});
    // an unknown one was made before this trace began, and an answer that took so long was waited for
    const std::string application = call != waiting_.end() ? call->second : nameOf(g_dbus_message_get_sender(message));
    if (call != waiting_.end()) {
        waiting_.erase(call);
    }
    if (!application.empty()) {
        const auto extraData = recordedEntries(child(g_dbus_message_get_body(message), 1).get());
        sink_({{"in", "reply"}, {"from", application}, {"extraData", extraData}});
    }
}

void BusTrace::takeOwnerChange(GDBusMessage* message) {
    if (textOf(g_dbus_message_get_member(message)) != "NameOwnerChanged" || !isBodyOf(message, "(sss)")) {
        return;
    }
    const char* name = nullptr;
    const char* before = nullptr;
    const char* now = nullptr;
    g_variant_get(g_dbus_message_get_body(message), "(&s&s&s)", &name, &before, &now);
    if (!isKnownApplication(name)) {
        return; // a connection, or another name of an application than its id
    }
    if (*before != '\0') {
        owners_.erase(before);
    }
    if (*now != '\0') {
        owners_[now] = name;
        isServiceLeaving_ = isServiceLeaving_ && std::string(name) != ids::service;
    }
    if (*now != '\0' && *before == '\0') {
        sink_({{"in", "start"}, {"application", name}});
    } else if (*now == '\0' && std::string(name) == ids::service) {
        sink_({{"in", "end"}, {"application", name}, {"how", isServiceLeaving_ ? "exit" : "kill"}});
    }
}

std::string BusTrace::nameOf(const char* busName) const {
    const auto known = owners_.find(textOf(busName));
    return known != owners_.end() ? known->second : textOf(busName);
}

bool BusTrace::isService(const char* busName) const {
    return nameOf(busName) == ids::service;
}

} // namespace deskwatch
