#include "actors/companion.h"

#include <app_common.h>
#include <message_port.h>
#include <service_app.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "actors/synchronisation_stops.h"
#include "c_owners.h"
#include "device/application_ids.h"
#include "session/companion_bus.h"
#include "text_pairs.h"

namespace deskwatch {
namespace {

using Entries = std::vector<std::pair<std::string, std::string>>;

/// A launch request. `waiting` is the platform's handle of one that is still to be answered, and null for others.
struct Launch {
    std::string caller;
    Entries extraData;
    app_control_h waiting = nullptr;
};

struct ReceivedMessage {
    std::string sender;
    Entries entries;
};

/// Takes a text from the platform.
std::string takeText(char* text) {
    const c::Owner<char, std::free> owner(text);
    return text != nullptr ? text : "";
}

bool collectEntry(app_control_h request, const char* key, void* entries) {
    char* value = nullptr;
    app_control_get_extra_data(request, key, &value);
    static_cast<Entries*>(entries)->emplace_back(key, takeText(value));
    return true;
}

Launch readLaunch(app_control_h request) {
    Launch launch;
    char* caller = nullptr;
    app_control_get_caller(request, &caller);
    launch.caller = takeText(caller);
    app_control_foreach_extra_data(request, collectEntry, &launch.extraData);
    bool isReplyWanted = false;
    app_control_is_reply_requested(request, &isReplyWanted);
    launch.waiting = isReplyWanted ? request : nullptr;
    return launch;
}

ReceivedMessage receivedMessage(const char* sender, bundle* message) {
    ReceivedMessage result{sender != nullptr ? sender : "", {}};
    for (const char* key : {"req", "msg"}) {
        char* text = nullptr;
        if (bundle_get_str(message, key, &text) == BUNDLE_ERROR_NONE && text != nullptr) {
            result.entries.emplace_back(key, text);
        }
    }
    return result;
}

/// What the service tells only once has to be known after this process has ended.
void countStop(const ReceivedMessage& message) {
    if (!message.entries.empty() &&
        message.entries.front() == std::pair<std::string, std::string>("req", stopSynchronising)) {
        countSynchronisationStop(takeText(app_get_data_path()));
    }
}

class Companion {
public:
    Companion();

    int run();

private:
    static bool onCreate(void* self);
    static void onLaunch(app_control_h request, void* self);
    static void onMessage(int port, const char* sender, const char* senderPort, bool trusted, bundle* message,
                          void* self);
    static gboolean onLaunches(TeskDeskCompanion* object, GDBusMethodInvocation* call, gpointer self);
    static gboolean onMessages(TeskDeskCompanion* object, GDBusMethodInvocation* call, gpointer self);
    static gboolean onAnswer(TeskDeskCompanion* object, GDBusMethodInvocation* call, const char* result, gpointer self);

    static gboolean onDismiss(TeskDeskCompanion* object, GDBusMethodInvocation* call, gpointer self);
    static void onServiceGone(GDBusConnection* bus, const char* name, gpointer self);

    /// Answers the oldest request that waits; a null result cancels it. False when none waits.
    bool answer(const char* result);

    std::vector<Launch> launches_;
    std::vector<ReceivedMessage> messages_;
    c::ObjectOwner<TeskDeskCompanion> object_{tesk_desk_companion_skeleton_new()};
};

Companion::Companion() {
    g_signal_connect(object_.get(), "handle-launches", G_CALLBACK(onLaunches), this);
    g_signal_connect(object_.get(), "handle-messages", G_CALLBACK(onMessages), this);
    g_signal_connect(object_.get(), "handle-answer", G_CALLBACK(onAnswer), this);
    g_signal_connect(object_.get(), "handle-dismiss", G_CALLBACK(onDismiss), this);
    // Before the platform takes the application's name: who started it by a call finds the object there.
    GError* error = nullptr;
    const c::ObjectOwner<GDBusConnection> bus(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, &error));
    if (bus == nullptr || g_dbus_interface_skeleton_export(G_DBUS_INTERFACE_SKELETON(object_.get()), bus.get(),
                                                           companion_bus::path, &error) == FALSE) {
        throw std::runtime_error("cannot be found on the bus: " + c::takeMessage(error));
    }
    g_bus_watch_name_on_connection(bus.get(), ids::service, G_BUS_NAME_WATCHER_FLAGS_NONE, nullptr, onServiceGone, this,
                                   nullptr);
}

int Companion::run() {
    service_app_lifecycle_callback_s callbacks{};
    callbacks.create = onCreate;
    callbacks.terminate = [](void*) {};
    callbacks.app_control = onLaunch;
    std::string name = "companion";
    char* arguments[] = {name.data(), nullptr};
    return service_app_main(1, arguments, &callbacks, this) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

bool Companion::onCreate(void* self) {
    char* id = nullptr;
    app_get_id(&id);
    return takeText(id) != ids::mail || message_port_register_local_port(ids::policyPort, onMessage, self) > 0;
}

void Companion::onLaunch(app_control_h request, void* self) {
    auto& companion = *static_cast<Companion*>(self);
    companion.launches_.push_back(readLaunch(request));
    tesk_desk_companion_emit_changed(companion.object_.get());
}

void Companion::onMessage(int /*port*/, const char* sender, const char* /*senderPort*/, bool /*trusted*/,
                          bundle* message, void* self) {
    auto& companion = *static_cast<Companion*>(self);
    companion.messages_.push_back(receivedMessage(sender, message));
    countStop(companion.messages_.back());
    tesk_desk_companion_emit_changed(companion.object_.get());
}

gboolean Companion::onLaunches(TeskDeskCompanion* object, GDBusMethodInvocation* call, gpointer self) {
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE("a(sba(ayay))"));
    for (const auto& launch : static_cast<Companion*>(self)->launches_) {
        g_variant_builder_add(&builder, "(sb@a(ayay))", launch.caller.c_str(), launch.waiting != nullptr ? TRUE : FALSE,
                              text_pairs::toVariant(launch.extraData));
    }
    tesk_desk_companion_complete_launches(object, call, g_variant_builder_end(&builder));
    return TRUE;
}

gboolean Companion::onMessages(TeskDeskCompanion* object, GDBusMethodInvocation* call, gpointer self) {
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE("a(sa(ayay))"));
    for (const auto& message : static_cast<Companion*>(self)->messages_) {
        g_variant_builder_add(&builder, "(s@a(ayay))", message.sender.c_str(), text_pairs::toVariant(message.entries));
    }
    tesk_desk_companion_complete_messages(object, call, g_variant_builder_end(&builder));
    return TRUE;
}

void refuseAnswer(GDBusMethodInvocation* call) {
    g_dbus_method_invocation_return_error_literal(call, G_DBUS_ERROR, G_DBUS_ERROR_FAILED,
                                                  "no launch request waits for an answer");
}

gboolean Companion::onAnswer(TeskDeskCompanion* object, GDBusMethodInvocation* call, const char* result,
                             gpointer self) {
    if (static_cast<Companion*>(self)->answer(result)) {
        tesk_desk_companion_complete_answer(object, call);
    } else {
        refuseAnswer(call);
    }
    return TRUE;
}

gboolean Companion::onDismiss(TeskDeskCompanion* object, GDBusMethodInvocation* call, gpointer self) {
    if (static_cast<Companion*>(self)->answer(nullptr)) {
        tesk_desk_companion_complete_dismiss(object, call);
    } else {
        refuseAnswer(call);
    }
    return TRUE;
}

/// What it asked is not waited for any more, also when it starts anew.
void Companion::onServiceGone(GDBusConnection* /*bus*/, const char* /*name*/, gpointer self) {
    auto& companion = *static_cast<Companion*>(self);
    for (auto& launch : companion.launches_) {
        launch.waiting = launch.caller == ids::service ? nullptr : launch.waiting;
    }
    tesk_desk_companion_emit_changed(companion.object_.get());
}

bool Companion::answer(const char* result) {
    const auto oldest = std::find_if(launches_.begin(), launches_.end(),
                                     [](const Launch& launch) { return launch.waiting != nullptr; });
    if (oldest == launches_.end()) {
        return false;
    }
    app_control_h created = nullptr;
    app_control_create(&created);
    const c::Owner<app_control_s, app_control_destroy> reply(created);
    if (result != nullptr) {
        app_control_add_extra_data(reply.get(), "result", result);
    }
    const int outcome = app_control_reply_to_launch_request(
        reply.get(), oldest->waiting, result != nullptr ? APP_CONTROL_RESULT_SUCCEEDED : APP_CONTROL_RESULT_CANCELED);
    oldest->waiting = nullptr;
    tesk_desk_companion_emit_changed(object_.get());
    return outcome == APP_CONTROL_ERROR_NONE;
}

} // namespace

int runCompanion() {
    return Companion().run();
}

} // namespace deskwatch
