#include "accounts/watch_answer.h"

#include <dconf.h>

#include <algorithm>
#include <stdexcept>

#include "TeskConsumerKeys.h"
#include "actors/synchronisation_stops.h"
#include "c_owners.h"
#include "device/application_ids.h"
#include "device/timer.h"
#include "explain/explanation.h"
#include "status/device_status.h"
#include "status/file_watch.h"

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
        : mailData_(layout.applicationData(ids::mail), [this] { isChanged_ = true; }) {
        timer_.start(std::chrono::seconds(seconds), [] {}); // its end wakes the loop
        g_signal_connect_swapped(settings_.get(), "changed", G_CALLBACK(onChanged), this);
        dconf_client_watch_sync(settings_.get(), "/");
    }

    ~Changes() { g_signal_handlers_disconnect_by_data(settings_.get(), this); }
    Changes(const Changes&) = delete;
    Changes& operator=(const Changes&) = delete;

    /// False when the time is over.
    bool next() {
        while (!isChanged_ && timer_.isRunning()) {
            g_main_context_iteration(nullptr, TRUE);
        }
        isChanged_ = false;
        return timer_.isRunning();
    }

private:
    static void onChanged(gpointer self) { static_cast<Changes*>(self)->isChanged_ = true; }

    c::ObjectOwner<DConfClient> settings_{dconf_client_new()};
    FileWatch mailData_;
    Timer timer_;
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
