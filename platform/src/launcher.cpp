#include "launcher.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <utility>

#include "environment.h"
#include "guard.h"
#include "host_bus.h"

namespace host {
namespace {

// An application that took the request and then ended has cancelled it. Any other error means that none took it.
app_control_result_e resultOf(const GError* error) {
    return g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_NO_REPLY) ? APP_CONTROL_RESULT_CANCELED
                                                                       : APP_CONTROL_RESULT_FAILED;
}

std::unique_ptr<app_control_s> copyOf(const app_control_s& request) {
    auto copy = std::make_unique<app_control_s>();
    copy->appId = request.appId;
    copy->extraData = request.extraData;
    return copy;
}

void callBack(std::unique_ptr<app_control_s> request, std::unique_ptr<app_control_s> reply, app_control_result_e result,
              app_control_reply_cb callback, void* userData) {
    AppControls& controls = AppControls::get();
    app_control_h requestHandle = controls.add(std::move(request));
    app_control_h replyHandle = controls.add(std::move(reply));
    callback(requestHandle, replyHandle, result, userData);
    controls.remove(requestHandle);
    controls.remove(replyHandle);
}

} // namespace

// A request on its way.
struct Launcher::Launch {
    Launcher* launcher;
    std::unique_ptr<app_control_s> request;
    app_control_reply_cb callback;
    void* userData;
    bool isStarting;

    const std::string& target() const { return *request->appId; }
};

Launcher& Launcher::get() {
    static Launcher launcher(Bus::get());
    return launcher;
}

Launcher::Launcher(Bus& bus) : bus_(bus) {}

Launcher::~Launcher() {
    for (const auto& launch : launches_) {
        if (launch->isStarting && std::getenv(host_bus::startsForgottenVariable) == nullptr) {
            bus_.awaitStart(launch->target());
        }
    }
}

int Launcher::send(const app_control_s& request, app_control_reply_cb callback, void* userData) {
    const bool isRunning = bus_.hasOwner(*request.appId);
    if (!isRunning && !bus_.isActivatable(*request.appId)) {
        return APP_CONTROL_ERROR_APP_NOT_FOUND;
    }
    launches_.push_back(std::make_unique<Launch>(Launch{this, copyOf(request), callback, userData, !isRunning}));
    Launch* launch = launches_.back().get();
    try {
        dispatch(*launch);
    } catch (...) {
        take(launch);
        throw;
    }
    bus_.flush();
    return APP_CONTROL_ERROR_NONE;
}

std::vector<std::string> Launcher::outstanding() const {
    std::vector<std::string> ids;
    std::transform(launches_.begin(), launches_.end(), std::back_inserter(ids),
                   [](const auto& launch) { return launch->target(); });
    return ids;
}

// To the id and not to the process that owns it now: if that one is about to end, the bus daemon starts the next one.
void Launcher::dispatch(Launch& launch) {
    constexpr int noTimeOut = G_MAXINT;
    g_dbus_connection_call(bus_.connection(), launch.target().c_str(), host_bus::applicationPath,
                           "tesk.host.Application", "Launch",
                           g_variant_new("(s@a(ayay)b)", Environment::get().applicationId().c_str(),
                                         launch.request->extraData.toVariant(), launch.callback != nullptr),
                           G_VARIANT_TYPE("(ia(ayay))"), G_DBUS_CALL_FLAGS_NONE, noTimeOut, nullptr, onAnswer, &launch);
}

std::unique_ptr<Launcher::Launch> Launcher::take(Launch* launch) {
    const auto found =
        std::find_if(launches_.begin(), launches_.end(), [&](const auto& entry) { return entry.get() == launch; });
    std::unique_ptr<Launch> taken = std::move(*found);
    launches_.erase(found);
    return taken;
}

void Launcher::onAnswer(GObject* connection, GAsyncResult* outcome, gpointer launch) {
    auto* answeredLaunch = static_cast<Launch*>(launch);
    guarded("the answer to a launch request", [&] {
        g_autoptr(GError) error = nullptr;
        const c::VariantOwner answer(g_dbus_connection_call_finish(G_DBUS_CONNECTION(connection), outcome, &error));
        answeredLaunch->launcher->answered(answeredLaunch, answer.get(), error);
    });
}

void Launcher::answered(Launch* launch, GVariant* answer, const GError* error) {
    gint result = resultOf(error);
    c::VariantOwner data;
    if (answer != nullptr) {
        g_variant_get_child(answer, 0, "i", &result);
        data.reset(g_variant_get_child_value(answer, 1));
    }
    const std::unique_ptr<Launch> done = take(launch);
    // who waits for no reply has nothing to do with the end of an application that was launched
    const bool isEnd = g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_NO_REPLY) != FALSE;
    if (error != nullptr && (done->callback != nullptr || !isEnd)) {
        report("the launch of " + done->target() + " failed: " + error->message);
    }
    if (done->callback != nullptr) {
        auto reply = std::make_unique<app_control_s>();
        reply->extraData = data != nullptr ? StringMap(data.get()) : StringMap();
        callBack(std::move(done->request), std::move(reply), static_cast<app_control_result_e>(result), done->callback,
                 done->userData);
    }
}

} // namespace host
