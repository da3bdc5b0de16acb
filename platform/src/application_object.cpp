#include "application_object.h"

#include "app_clock.h"
#include "environment.h"
#include "guard.h"
#include "host_bus.h"
#include "launcher.h"
#include "settings_store.h"
#include "vconf_watches.h"

namespace host {

ApplicationObject::ApplicationObject(const Bus& bus, Handler handler)
    : handler_(std::move(handler)), skeleton_(platform_bus_application_skeleton_new()) {
    g_signal_connect(skeleton_.get(), "handle-launch", G_CALLBACK(onLaunch), this);
    g_signal_connect(skeleton_.get(), "handle-settle", G_CALLBACK(onSettle), this);
    g_signal_connect(skeleton_.get(), "handle-advance", G_CALLBACK(onAdvance), this);
    g_autoptr(GError) error = nullptr;
    if (!g_dbus_interface_skeleton_export(G_DBUS_INTERFACE_SKELETON(skeleton_.get()), bus.connection(),
                                          host_bus::applicationPath, &error)) {
        throw HostError(std::string("cannot take launch requests: ") + error->message);
    }
}

ApplicationObject::~ApplicationObject() {
    g_signal_handlers_disconnect_by_data(skeleton_.get(), this);
}

void ApplicationObject::deliver(std::unique_ptr<app_control_s> request) {
    AppControls& controls = AppControls::get();
    request->isDelivered = true;
    app_control_h handle = controls.add(std::move(request));
    handler_(handle);
    app_control_s* delivered = controls.find(handle);
    if (delivered == nullptr) {
        return;
    }
    delivered->isDelivered = false;
    if (delivered->answer == nullptr) {
        controls.remove(handle);
    }
}

gboolean ApplicationObject::onLaunch(PlatformBusApplication* /*object*/, GDBusMethodInvocation* invocation,
                                     const char* caller, GVariant* extraData, gboolean replyWanted, gpointer self) {
    PendingAnswer answer(invocation);
    return guarded("a launch request", TRUE, [&] {
        auto request = std::make_unique<app_control_s>();
        request->appId = Environment::get().applicationId();
        request->caller = caller;
        request->extraData = StringMap(extraData);
        if (replyWanted) {
            request->answer = std::move(answer);
        }
        static_cast<ApplicationObject*>(self)->deliver(std::move(request));
        if (!replyWanted) {
            answerLaunch(answer.release(), APP_CONTROL_RESULT_SUCCEEDED, StringMap());
        }
        return TRUE;
    });
}

// The answer follows the news that the main loop has by then.
gboolean ApplicationObject::onSettle(PlatformBusApplication* /*object*/, GDBusMethodInvocation* invocation,
                                     gpointer /*self*/) {
    return guarded("a question whether all is settled", FALSE, [&] {
        SettingsStore::get().awaitNews();
        g_idle_add_full(G_PRIORITY_DEFAULT, &ApplicationObject::answerSettle, invocation, nullptr);
        return TRUE;
    });
}

// The sources that are due come before the answer: they have waited longer.
gboolean ApplicationObject::onAdvance(PlatformBusApplication* /*object*/, GDBusMethodInvocation* invocation,
                                      guint seconds, gpointer /*self*/) {
    return guarded("time that passes", FALSE, [&] {
        AppClock::get().advance(seconds);
        g_idle_add_full(G_PRIORITY_DEFAULT, &ApplicationObject::answerAdvance, invocation, nullptr);
        return TRUE;
    });
}

gboolean ApplicationObject::answerAdvance(gpointer invocation) {
    platform_bus_application_complete_advance(nullptr, static_cast<GDBusMethodInvocation*>(invocation));
    return G_SOURCE_REMOVE;
}

gboolean ApplicationObject::answerSettle(gpointer invocation) {
    return guarded<gboolean>("the answer that all is settled", G_SOURCE_REMOVE, [&] {
        VconfWatches::get().tellNews();
        const std::vector<std::string> ids = Launcher::get().outstanding();
        std::vector<const char*> texts;
        texts.reserve(ids.size() + 1);
        for (const std::string& id : ids) {
            texts.push_back(id.c_str());
        }
        texts.push_back(nullptr);
        platform_bus_application_complete_settle(nullptr, static_cast<GDBusMethodInvocation*>(invocation),
                                                 texts.data());
        return G_SOURCE_REMOVE;
    });
}

} // namespace host
