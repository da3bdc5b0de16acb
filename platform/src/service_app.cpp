#include "service_app.h"

#include <glib-unix.h>

#include <cerrno>
#include <csignal>

#include "application_object.h"
#include "bus.h"
#include "c_owners.h"
#include "environment.h"
#include "faults.h"
#include "guard.h"
#include "settings_store.h"
#include "vconf_watches.h"

using host::ApplicationObject;
using host::Bus;
using host::guarded;

namespace {

constexpr int failed = -1;

/// The application's main loop, and whether it was told to end, which may happen before it runs.
class MainLoop {
public:
    static MainLoop& get() {
        static MainLoop loop;
        return loop;
    }

    MainLoop(const MainLoop&) = delete;
    MainLoop& operator=(const MainLoop&) = delete;

    bool isEnding() const { return isEnding_; }

    void end() {
        isEnding_ = true;
        g_main_loop_quit(loop_.get());
    }

    void run() {
        if (!isEnding_) {
            g_main_loop_run(loop_.get());
        }
    }

    // Handles what has arrived up to now: sources of one priority run in the order of their arrival.
    void drain() {
        bool drained = false;
        g_idle_add_full(G_PRIORITY_DEFAULT, setTrue, &drained, nullptr);
        while (!drained) {
            g_main_context_iteration(nullptr, TRUE);
        }
    }

private:
    MainLoop() = default;

    static gboolean setTrue(gpointer flag) {
        *static_cast<bool*>(flag) = true;
        return G_SOURCE_REMOVE;
    }

    c::MainLoopOwner loop_{g_main_loop_new(nullptr, FALSE)};
    bool isEnding_ = false;
};

/// Ends the main loop on a signal, while it lives.
class EndOnSignal {
public:
    explicit EndOnSignal(int signal) : source_(g_unix_signal_add(signal, onSignal, nullptr)) {}
    EndOnSignal(const EndOnSignal&) = delete;
    EndOnSignal& operator=(const EndOnSignal&) = delete;
    ~EndOnSignal() { g_source_remove(source_); }

private:
    static gboolean onSignal(gpointer /*data*/) {
        MainLoop::get().end();
        return G_SOURCE_CONTINUE;
    }

    guint source_;
};

// Whoever starts a process by hand launches the application too, with an empty request.
void deliverFirstRequest(const Bus& bus, ApplicationObject& object) {
    if (bus.startedThisProcess() || MainLoop::get().isEnding()) {
        return;
    }
    auto request = std::make_unique<app_control_s>();
    request->appId = host::Environment::get().applicationId();
    object.deliver(std::move(request));
}

// The names go first: from then on the bus daemon starts the next process for a launch request, or answers that the
// port is closed. What was sent before has arrived by the time the daemon confirms, and is still handled. So no request
// is lost between an application that ends and the next one.
void leaveBus(Bus& bus) {
    bus.releaseAllNames();
    MainLoop::get().drain();
    host::VconfWatches::get().tellNews();
}

int runApplication(const service_app_lifecycle_callback_s& callbacks, void* userData) {
    const std::string& id = host::Environment::get().applicationId();
    Bus& bus = Bus::get();
    // From here to the application's end the platform's functions fail where its settings say so.
    host::Faults faults(host::SettingsStore::get(), id);
    const host::FaultInjection injection([&](const char* function) { return faults.answer(function); });
    const EndOnSignal onTermination(SIGTERM);
    const EndOnSignal onInterrupt(SIGINT);
    ApplicationObject object(bus, [&](app_control_h request) {
        if (callbacks.app_control != nullptr) {
            callbacks.app_control(request, userData);
        }
    });
    if (!bus.requestName(id)) {
        throw host::HostError("an instance of " + id + " is running already");
    }
    if (!callbacks.create(userData)) {
        host::report("the application refused to start");
        bus.releaseAllNames();
        return failed;
    }
    deliverFirstRequest(bus, object);
    MainLoop::get().run();
    leaveBus(bus);
    if (callbacks.terminate != nullptr) {
        callbacks.terminate(userData);
    }
    bus.flush();
    return 0;
}

} // namespace

int service_app_main(int /*argc*/, char** argv, service_app_lifecycle_callback_s* callback, void* user_data) {
    if (argv == nullptr || callback == nullptr || callback->create == nullptr) {
        return -EINVAL;
    }
    return guarded(__func__, failed, [&] {
        // A reader that went away is an error of the write, not the application's end.
        std::signal(SIGPIPE, SIG_IGN);
        return runApplication(*callback, user_data);
    });
}

void service_app_exit(void) {
    guarded(__func__, [] { MainLoop::get().end(); });
}
