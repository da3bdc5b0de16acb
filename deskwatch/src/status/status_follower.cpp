#include "status/status_follower.h"

#include <dconf.h>

#include <memory>
#include <vector>

#include "c_owners.h"
#include "device/application_ids.h"
#include "device/timer.h"
#include "status/file_watch.h"

namespace deskwatch {
namespace {

/// Changes within this time are shown together.
constexpr std::chrono::milliseconds together{50};

class StatusFollower {
public:
    StatusFollower(const DeviceSession& session, const std::function<void(const DeviceStatus&)>& show)
        : session_(session), show_(show) {
        listenToSettings();
        listenToBus("org.freedesktop.DBus", "NameOwnerChanged");
        listenToBus("tesk.desk.Companion", "Changed");
        const auto& layout = session.device().layout();
        listenToFile(layout.log());
        listenToFile(layout.applicationData(ids::service));
    }

    [[noreturn]] void run() {
        refresh();
        while (true) {
            g_main_context_iteration(nullptr, TRUE);
            if (isDue_) {
                refresh();
            }
        }
    }

private:
    void listenToSettings() {
        g_signal_connect_swapped(settings_.get(), "changed", G_CALLBACK(onChanged), this);
        dconf_client_watch_sync(settings_.get(), "/");
    }

    void listenToBus(const char* interface, const char* signal) {
        const auto onSignal = [](GDBusConnection*, const char*, const char*, const char*, const char*, GVariant*,
                                 gpointer self) { onChanged(self); };
        g_dbus_connection_signal_subscribe(session_.connection(), nullptr, interface, signal, nullptr, nullptr,
                                           G_DBUS_SIGNAL_FLAGS_NONE, onSignal, this, nullptr);
    }

    void listenToFile(const std::filesystem::path& path) {
        files_.push_back(std::make_unique<FileWatch>(path, [this] { onChanged(this); }));
    }

    /// The folder is made by the service. A monitor of a folder that is not there yet would look for it now and then.
    void listenToDatabase() {
        const auto folder = session_.device().layout().applicationData(ids::service) / "dbspace";
        if (!isDatabaseHeard_ && std::filesystem::exists(folder)) {
            listenToFile(folder);
            isDatabaseHeard_ = true;
        }
    }

    void refresh() {
        isDue_ = false;
        listenToDatabase();
        const auto status = readStatus(session_);
        show_(status);
        const bool isCounting = status.idleExit && status.idleExit->isExact && status.idleExit->in.count() > 0;
        if (isCounting && !timer_.isRunning()) {
            refreshAfter(std::chrono::seconds(1));
        }
    }

    static void onChanged(gpointer self) { static_cast<StatusFollower*>(self)->refreshAfter(together); }

    void refreshAfter(std::chrono::milliseconds delay) {
        timer_.start(delay, [this] { isDue_ = true; });
    }

    const DeviceSession& session_;
    const std::function<void(const DeviceStatus&)>& show_;
    const c::ObjectOwner<DConfClient> settings_{dconf_client_new()};
    std::vector<std::unique_ptr<FileWatch>> files_;
    bool isDatabaseHeard_ = false;
    bool isDue_ = false;
    Timer timer_;
};

} // namespace

void followStatus(const DeviceSession& session, const std::function<void(const DeviceStatus& status)>& show) {
    session.endWithWatch();
    StatusFollower(session, show).run();
}

} // namespace deskwatch
