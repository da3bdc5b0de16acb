#include "recording/timeline.h"

#include <algorithm>
#include <stdexcept>
#include <utility>
#include <vector>

#include "device/application_ids.h"
#include "device/bus_client.h"
#include "device/end_request.h"
#include "device/timer.h"
#include "recording/bus_monitor.h"
#include "recording/time_order.h"
#include "records/log_lines.h"
#include "session/companion_bus.h"
#include "status/followed_file.h"

namespace deskwatch {
namespace {

using Tell = TimeOrder::Tell;

constexpr std::chrono::seconds inboxTimeout{20};

/// The messages that the mail application has received and keeps, as what the service sent.
std::vector<TraceEvent> inboxOf(const BusClient& bus) {
    std::vector<TraceEvent> events;
    if (!bus.daemon().isOwned(ids::mail)) {
        return events;
    }
    c::VariantOwner answer;
    try {
        answer = bus.call({ids::mail, companion_bus::path, "tesk.desk.Companion", "Messages"}, nullptr, inboxTimeout);
    } catch (const std::runtime_error&) {
        return events; // a program in the place of the stand-in, which keeps its messages to itself
    }
    GVariantIter* messages = nullptr;
    g_variant_get(answer.get(), "(a(sa(ayay)))", &messages);
    const c::Owner<GVariantIter, g_variant_iter_free> owner(messages);
    GVariant* entries = nullptr;
    while (g_variant_iter_next(messages, "(&s@a(ayay))", nullptr, &entries) != FALSE) {
        const c::VariantOwner ownerOfEntries(entries);
        events.push_back(
            {{"out", "message"}, {"to", ids::mail}, {"port", ids::policyPort}, {"entries", recordedEntries(entries)}});
    }
    return events;
}

/// A program writes a line of the log at once after it took the time, and the log is read before each turn.
constexpr std::chrono::milliseconds turnPeriod{50};

/// Tells the bus's messages and the log's lines in the order of time. What has come before the first step is the past.
class Timeline {
public:
    Timeline(const Device& device, const Tell& tell)
        : device_(device), tell_(tell), order_(tell),
          log_(device.layout().log(), [this](const std::string& text) { takeLog(text); }) {}

    void readPast(bool isTold) {
        isTold_ = isTold;
        log_.read();
        if (isTold && device_.isBooted()) {
            for (const auto& event : inboxOf(BusClient(device_.busAddress(), device_.patience()))) {
                tell_(timelineEntry(event));
            }
        }
        isTold_ = true;
    }

    void follow(const BusMonitor& monitor) {
        isPast_ = false;
        BusTrace trace(BusClient(device_.busAddress(), device_.patience()).daemon(),
                       [this](const TraceEvent& event) { takeEvent(event); });
        Timer untilTurn;
        bool isTurn = false;
        EndRequest endRequest;
        bool isOver = false;
        endRequest.whenNoted([&isOver] { isOver = true; });
        while (!isOver) {
            g_main_context_iteration(nullptr, TRUE);
            isOver = isOver || monitor.isClosed();
            while (const auto message = monitor.next(std::chrono::milliseconds::zero())) {
                trace.take(message.get());
            }
            if (std::exchange(isTurn, false)) {
                log_.read(); // the notifier of the file is late
                order_.turn();
            }
            if (!order_.isEmpty() && !untilTurn.isRunning()) {
                untilTurn.start(turnPeriod, [&isTurn] { isTurn = true; });
            }
        }
        log_.read(); // what was written last
        order_.end();
        endRequest.obey();
    }

private:
    void takeEvent(const TraceEvent& event) {
        auto entry = timelineEntry(event);
        entry.time = std::chrono::system_clock::now();
        order_.add(std::move(entry));
    }

    void takeLog(const std::string& text) {
        const auto complete = lines_.add(text);
        std::vector<TimelineEntry> entries;
        std::size_t begin = 0;
        for (auto end = complete.find('\n'); end != std::string::npos; end = complete.find('\n', begin)) {
            entries.push_back(timelineEntry(std::string_view(complete).substr(begin, end - begin)));
            begin = end + 1;
        }
        isPast_ ? tellPast(entries) : takeNew(std::move(entries));
    }

    void tellPast(const std::vector<TimelineEntry>& entries) const {
        if (isTold_) {
            std::for_each(entries.begin(), entries.end(), tell_);
        }
    }

    /// Lines that were read together. One without a time follows the line before it, or comes before the first of them.
    void takeNew(std::vector<TimelineEntry> entries) {
        const auto timed = std::find_if(entries.begin(), entries.end(), [](const auto& entry) { return entry.time; });
        auto time = timed != entries.end() ? *timed->time : std::chrono::system_clock::now();
        for (auto& entry : entries) {
            time = entry.time.value_or(time);
            entry.time = time;
            order_.add(std::move(entry));
        }
    }

    const Device& device_;
    const Tell& tell_;
    TimeOrder order_;
    LogLines lines_{std::nullopt};
    bool isTold_ = true;
    bool isPast_ = true;
    FollowedFile log_;
};

} // namespace

void tellTimeline(const Device& device, const TimelineRange& range, const Tell& tell) {
    std::optional<BusMonitor> monitor;
    if (!device.exists()) {
        throw std::runtime_error(device.layout().folder().string() + " is not a watch folder");
    }
    if (range.isFollowed) {
        device.requireBooted();
        monitor.emplace(device.busAddress(), std::vector<std::string>{},
                        device.patience()); // first, so that nothing falls between past and present
    }
    Timeline timeline(device, tell);
    timeline.readPast(range.hasPast);
    if (monitor) {
        timeline.follow(*monitor);
    }
}

} // namespace deskwatch
