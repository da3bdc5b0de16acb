#include "replay/stand_ins.h"

#include <app_control.h>

#include <algorithm>
#include <atomic>
#include <deque>
#include <mutex>
#include <stdexcept>
#include <thread>

#include "c_owners.h"
#include "device/application_ids.h"
#include "device/bus_connection.h"
#include "device/bus_daemon.h"
#include "host_bus.h"
#include "tesk-host-bus.h"

namespace deskwatch {
namespace {

constexpr int busTimeout = 30'000;

/// The bus name that says that the mail application has its port open (tesk-host.xml).
const std::string mailPort = std::string(ids::mail) + ".port_eas_2ditpolicy_2dport";

} // namespace

/// Handles what comes in for all of them, in a thread.
class StandIns::Loop {
public:
    Loop() { g_main_context_push_thread_default(context_.get()); }

    ~Loop() {
        isOver_ = true; // a main loop that is told to end before it runs would run for ever
        g_main_context_wakeup(context_.get());
        if (thread_.joinable()) {
            thread_.join();
        }
    }

    Loop(const Loop&) = delete;
    Loop& operator=(const Loop&) = delete;

    /// What was exported since the loop was made is handled there.
    void run() {
        g_main_context_pop_thread_default(context_.get());
        thread_ = std::thread([this] {
            g_main_context_push_thread_default(context_.get());
            while (!isOver_) {
                g_main_context_iteration(context_.get(), TRUE);
            }
            g_main_context_pop_thread_default(context_.get());
        });
    }

private:
    c::Owner<GMainContext, g_main_context_unref> context_{g_main_context_new()};
    std::atomic<bool> isOver_{false};
    std::thread thread_;
};

class StandIns::Application {
public:
    Application(const std::string& address, std::string id)
        : id_(std::move(id)), connection_(connectToBus(address, busPatience)),
          launches_(tesk_host_application_skeleton_new()), messages_(tesk_host_message_port_skeleton_new()) {
        g_signal_connect(launches_.get(), "handle-launch", G_CALLBACK(onLaunch), this);
        g_signal_connect(launches_.get(), "handle-settle", G_CALLBACK(onSettle), this);
        g_signal_connect(messages_.get(), "handle-send", G_CALLBACK(onSend), this);
        offer(launches_.get());
        offer(messages_.get());
        own(id_);
    }

    ~Application() {
        g_dbus_interface_skeleton_unexport(G_DBUS_INTERFACE_SKELETON(launches_.get()));
        g_dbus_interface_skeleton_unexport(G_DBUS_INTERFACE_SKELETON(messages_.get()));
        g_dbus_connection_close_sync(connection_.get(), nullptr, nullptr);
    }

    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;

    const std::string& id() const { return id_; }

    void start() {
        if (id_ == ids::mail) {
            own(mailPort);
        }
    }

    bool answer(app_control_result_e result, GVariant* extraData) {
        const std::lock_guard lock(mutex_);
        bool isAnswered = false;
        while (!isAnswered && !waiting_.empty()) {
            isAnswered = isThere(g_dbus_method_invocation_get_sender(waiting_.front())); // the service may have ended
            tesk_host_application_complete_launch(nullptr, waiting_.front(), result, extraData);
            waiting_.pop_front();
        }
        return isAnswered;
    }

private:
    void offer(gpointer skeleton) {
        GError* error = nullptr;
        if (g_dbus_interface_skeleton_export(G_DBUS_INTERFACE_SKELETON(skeleton), connection_.get(),
                                             host_bus::applicationPath, &error) == FALSE) {
            throw std::runtime_error("cannot play " + id_ + ": " + c::takeMessage(error));
        }
    }

    bool isThere(const std::string& name) const { return BusDaemon(connection_.get()).isOwned(name); }

    void own(const std::string& name) {
        constexpr guint doNotQueue = 4;
        GError* error = nullptr;
        const c::VariantOwner answer(g_dbus_connection_call_sync(
            connection_.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
            g_variant_new("(su)", name.c_str(), doNotQueue), nullptr, G_DBUS_CALL_FLAGS_NONE, busTimeout, nullptr,
            &error));
        if (answer == nullptr) {
            throw std::runtime_error("cannot play " + id_ + ": " + c::takeMessage(error));
        }
    }

    static gboolean onLaunch(TeskHostApplication* object, GDBusMethodInvocation* call, const char* /*caller*/,
                             GVariant* /*extraData*/, gboolean isReplyWanted, gpointer self) {
        auto& application = *static_cast<Application*>(self);
        try {
            application.start();
        } catch (const std::runtime_error&) { // the bus is gone, and the answer with it
        }
        if (isReplyWanted != FALSE) {
            const std::lock_guard lock(application.mutex_);
            application.waiting_.push_back(call);
        } else {
            tesk_host_application_complete_launch(object, call, APP_CONTROL_RESULT_SUCCEEDED,
                                                  g_variant_new_array(G_VARIANT_TYPE("(ayay)"), nullptr, 0));
        }
        return TRUE;
    }

    static gboolean onSettle(TeskHostApplication* object, GDBusMethodInvocation* call, gpointer /*self*/) {
        const char* const none[] = {nullptr};
        tesk_host_application_complete_settle(object, call, none);
        return TRUE;
    }

    static gboolean onSend(TeskHostMessagePort* object, GDBusMethodInvocation* call, const char* /*port*/,
                           const char* /*sender*/, GVariant* /*message*/, gpointer /*self*/) {
        tesk_host_message_port_complete_send(object, call);
        return TRUE;
    }

    std::string id_;
    c::ObjectOwner<GDBusConnection> connection_;
    c::ObjectOwner<TeskHostApplication> launches_;
    c::ObjectOwner<TeskHostMessagePort> messages_;
    std::mutex mutex_;
    std::deque<GDBusMethodInvocation*> waiting_;
};

StandIns::StandIns(const Device& device, const std::set<std::string>& ids) : loop_(std::make_unique<Loop>()) {
    for (const auto& id : ids) {
        applications_.push_back(std::make_unique<Application>(device.busAddress(), id));
    }
    loop_->run();
}

StandIns::~StandIns() {
    loop_.reset(); // nothing is handled while they go
}

StandIns::Application* StandIns::find(const std::string& id) const {
    const auto found = std::find_if(applications_.begin(), applications_.end(),
                                    [&](const auto& application) { return application->id() == id; });
    return found != applications_.end() ? found->get() : nullptr;
}

void StandIns::start(const std::string& id) {
    if (auto* application = find(id)) {
        application->start();
    }
}

bool StandIns::answer(const std::string& id, const TraceEvent& extraData) {
    const auto result = extraData.contains("result") ? APP_CONTROL_RESULT_SUCCEEDED : APP_CONTROL_RESULT_CANCELED;
    const c::VariantOwner entries(g_variant_ref_sink(entriesOfRecorded(extraData)));
    auto* application = find(id);
    return application != nullptr && application->answer(result, entries.get());
}

} // namespace deskwatch
