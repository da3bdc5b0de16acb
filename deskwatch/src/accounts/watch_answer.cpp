#include "accounts/watch_answer.h"

#include <dconf.h>

#include <algorithm>
#include <stdexcept>

#include "TeskConsumerKeys.h"
#include "actors/synchronisation_stops.h"
#include "c_owners.h"
#include "device/application_ids.h"
#include "explain/explanation.h"
#include "status/device_status.h"

namespace deskwatch {
namespace {

bool isZero(const DeviceStatus& status, const char* key) {
    return std::find(status.keys.begin(), status.keys.end(), NamedValue{key, 0}) != status.keys.end();
}

std::optional<Verdict> verdictNow(const DeviceSession& session, const MailAccount& account) {
    session.settleService();
    const auto status = readStatus(session);
    const auto explanation = explain(deviceFacts(status));
    ComplianceFacts facts;
    facts.elements = account.elements;
    const int stops = synchronisationStops(session.device().layout().applicationData(ids::mail));
    facts.isSynchronisationStopped = stops > account.pending->stopsBefore.value_or(stops);
    facts.isLockMissing = isZero(status, TeskConsumerKeys::passwordPolicyApplied) &&
                          (!account.pending->wasApplied || isZero(status, TeskConsumerKeys::lockType));
    facts.isEncryptionMissing = isZero(status, TeskConsumerKeys::deviceEncryptionApplied);
    facts.written = explanation.written;
    facts.held = explanation.now;
    return verdictOf(facts);
}

/// Wakes up when something changes that a verdict depends on, and when the time is over.
class Changes {
public:
    Changes(const DeviceLayout& layout, int seconds)
        : timer_(g_timeout_add_seconds(static_cast<guint>(seconds), onTimeOver, this)) {
        g_signal_connect_swapped(settings_.get(), "changed", G_CALLBACK(onChanged), this);
        dconf_client_watch_sync(settings_.get(), "/");
        const c::ObjectOwner<GFile> folder(g_file_new_for_path(layout.applicationData(ids::mail).c_str()));
        monitor_.reset(g_file_monitor_directory(folder.get(), G_FILE_MONITOR_WATCH_MOVES, nullptr, nullptr));
        if (monitor_ != nullptr) {
            g_signal_connect_swapped(monitor_.get(), "changed", G_CALLBACK(onChanged), this);
        }
    }

    ~Changes() {
        g_signal_handlers_disconnect_by_data(settings_.get(), this);
        if (monitor_ != nullptr) {
            g_signal_handlers_disconnect_by_data(monitor_.get(), this);
        }
        if (timer_ != 0) {
            g_source_remove(timer_);
        }
    }
    Changes(const Changes&) = delete;
    Changes& operator=(const Changes&) = delete;

    /// False when the time is over.
    bool next() {
        while (!isChanged_ && timer_ != 0) {
            g_main_context_iteration(nullptr, TRUE);
        }
        isChanged_ = false;
        return timer_ != 0;
    }

private:
    static void onChanged(gpointer self) { static_cast<Changes*>(self)->isChanged_ = true; }

    static gboolean onTimeOver(gpointer self) {
        static_cast<Changes*>(self)->timer_ = 0;
        return G_SOURCE_REMOVE;
    }

    c::ObjectOwner<DConfClient> settings_{dconf_client_new()};
    c::ObjectOwner<GFileMonitor> monitor_;
    guint timer_ = 0;
    bool isChanged_ = false;
};

} // namespace

std::optional<Verdict> awaitVerdict(const DeviceSession& session, const MailAccount& account, int seconds) {
    Changes changes(session.device().layout(), seconds);
    do {
        if (auto verdict = verdictNow(session, account)) {
            return verdict;
        }
    } while (seconds > 0 && changes.next());
    return std::nullopt;
}

} // namespace deskwatch
