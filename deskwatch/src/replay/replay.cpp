#include "replay/replay.h"

#include <algorithm>
#include <cstdlib>

#include "check/evidence.h"
#include "check/findings.h"
#include "replay/channels.h"
#include "replay/surroundings.h"
#include "session/observer.h"
#include "watch_clock.h"

namespace deskwatch {
namespace {

/// Compares in order, up to the first difference.
std::optional<Difference> differenceIn(const Channel& channel) {
    const auto& [recorded, happened] = channel;
    std::size_t index = 0;
    while (index < recorded.size() && index < happened.size() && recorded[index].event == happened[index].event) {
        ++index;
    }
    Difference difference;
    if (index < happened.size()) {
        difference.line = happened[index].line;
        difference.now = happened[index].event;
    }
    if (index < recorded.size()) {
        difference.line = recorded[index].line;
        difference.recorded = recorded[index].event;
    }
    return difference.now || difference.recorded ? std::optional(std::move(difference)) : std::nullopt;
}

/// The channels are compared one by one; the reader is told of the difference that comes first in the recording.
ReplayOutcome compare(const Recording& recording, std::vector<ReplayedEffect> happened) {
    ReplayOutcome outcome;
    for (const auto& [name, channel] : channelsOf(recording, happened)) {
        auto difference = differenceIn(channel);
        if (difference && (!outcome.difference || difference->line < outcome.difference->line)) {
            outcome.difference = std::move(difference);
        }
    }
    outcome.equal = static_cast<std::size_t>(
        std::count_if(recording.events.begin(), recording.events.end(), [&](const RecordedEvent& event) {
            return event.event.contains("out") && (!outcome.difference || event.line < outcome.difference->line);
        }));
    outcome.happened = std::move(happened);
    return outcome;
}

/// What the watch lacks now, as the expectation of a recording states it.
TraceEvent checked(const Device& device) {
    auto findings = findingsJson(findingsOf(readEvidence(DeviceSession(device, observerId))));
    const auto folder = device.layout().folder().string() + "/"; // another one each time
    for (auto at = findings.find(folder); at != std::string::npos; at = findings.find(folder, at)) {
        findings.erase(at, folder.size());
    }
    return {{"expect", "check"}, {"findings", TraceEvent::parse(findings)["findings"]}};
}

} // namespace

ReplayOutcome replay(const Device& device, const std::vector<Application>& applications, const Recording& recording) {
    setenv(watch_clock::variable, watch_clock::standing, 1); // no time passes but the recording's
    device.resume(applications);
    Surroundings surroundings(device, recording);
    surroundings.begin(recording.state);
    std::vector<ReplayedEffect> happened;
    std::size_t cause = 1;
    bool isPending = false;
    const auto collect = [&] {
        for (auto& effect : surroundings.effects()) {
            happened.push_back({std::move(effect), cause});
        }
        isPending = false;
    };
    for (const auto& [event, line, text] : recording.events) {
        if (event.contains("expect")) {
            collect();
            happened.push_back({checked(device), line});
        } else if (!event.contains("out")) {
            surroundings.act(event);
            cause = line;
            isPending = true;
        } else if (isPending) {
            collect(); // what came in together is handled together
        }
    }
    collect();
    return compare(recording, std::move(happened));
}

} // namespace deskwatch
