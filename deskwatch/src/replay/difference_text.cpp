#include <algorithm>
#include <vector>

#include "recording/timeline.h"
#include "replay/replay.h"
#include "text/text_table.h"
#include "text/value_output.h"

namespace deskwatch {
namespace {

constexpr std::size_t mostBefore = 3;

std::string numbered(const RecordedEvent& event) {
    const auto number = std::to_string(event.line);
    return std::string(number.size() < 5 ? 5 - number.size() : 0, ' ') + number + "  " +
           printable(timelineEntry(event.event).text) + "\n";
}

/// That an application came up is not what the service acts upon.
bool isCause(const TraceEvent& event) {
    return !event.contains("out") && !event.contains("expect") && event.value("in", "") != "start";
}

std::string side(const char* name, const std::optional<TraceEvent>& event) {
    return std::string("  ") + name + (event ? printable(jsonText(*event)) : "nothing");
}

} // namespace

std::string differenceText(const Recording& recording, const Difference& difference) {
    const auto& events = recording.events;
    const auto place = std::find_if(events.begin(), events.end(), [&](const RecordedEvent& event) {
        return event.line > difference.line - (difference.recorded ? 1 : 0);
    });
    auto before = place;
    std::string effects;
    for (std::size_t count = 0; before != events.begin() && count < mostBefore && !isCause((before - 1)->event);) {
        --before;
        if (before->event.contains("out")) {
            effects.insert(0, numbered(*before));
            ++count;
        }
    }
    const auto cause = std::find_if(std::make_reverse_iterator(before), events.rend(),
                                    [](const RecordedEvent& event) { return isCause(event.event); });
    return (cause != events.rend() ? "  after\n" + numbered(*cause) : "") +
           (effects.empty() ? "" : "  the service did as recorded\n" + effects) + "  and then\n" +
           side("recorded  ", difference.recorded) + "\n" + side("now       ", difference.now);
}

} // namespace deskwatch
