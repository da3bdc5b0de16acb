#include "recording/timeline.h"

#include <stdexcept>

#include "device/application_ids.h"
#include "device/bus_client.h"
#include "recording/bus_monitor.h"
#include "records/log_lines.h"
#include "session/companion_bus.h"
#include "status/followed_file.h"

namespace deskwatch {
namespace {

using Tell = std::function<void(const TimelineEntry& entry)>;

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
    GVariant* entries = nullptr;
    while (g_variant_iter_next(messages, "(&s@a(ayay))", nullptr, &entries) != FALSE) {
        const c::VariantOwner owner(entries);
        events.push_back(
            {{"out", "message"}, {"to", ids::mail}, {"port", ids::policyPort}, {"entries", recordedEntries(entries)}});
    }
    g_variant_iter_free(messages);
    return events;
}

/// Tells the bus's messages and the log's lines as they come. What has come before the first step is the past.
class Timeline {
public:
    Timeline(const Device& device, Tell tell)
        : device_(device), tell_(std::move(tell)),
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
                       [this](const TraceEvent& event) { tellNow(timelineEntry(event)); });
        while (!monitor.isClosed()) {
            g_main_context_iteration(nullptr, TRUE);
            while (const auto message = monitor.next(std::chrono::milliseconds::zero())) {
                trace.take(message.get());
            }
        }
        log_.read(); // what was written last
    }

private:
    void takeLog(const std::string& text) {
        const auto complete = lines_.add(text);
        std::size_t begin = 0;
        for (auto end = complete.find('\n'); end != std::string::npos; end = complete.find('\n', begin)) {
            const auto entry = timelineEntry(std::string_view(complete).substr(begin, end - begin));
            isPast_ ? tellPast(entry) : tellNow(entry);
            begin = end + 1;
        }
    }

    void tellPast(const TimelineEntry& entry) const {
        if (isTold_) {
            tell_(entry);
        }
    }

    void tellNow(TimelineEntry entry) const {
        entry.time = entry.time.value_or(std::chrono::system_clock::now());
        tell_(entry);
    }

    const Device& device_;
    Tell tell_;
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
