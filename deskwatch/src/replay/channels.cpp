#include "replay/channels.h"

namespace deskwatch {
namespace {

std::string channelOf(const TraceEvent& effect) {
    return effect.value("out", effect.value("expect", "end")) + " " + effect.value("to", "");
}

} // namespace

TraceEvent effectOf(const TraceEvent& event) {
    TraceEvent effect = event;
    if (event.contains("expect") && !event.contains("findings")) {
        effect["findings"] = TraceEvent::array();
    }
    if (event.contains("in")) {
        effect["how"] = event.value("how", "") == "kill" ? "kill" : "exit";
    }
    return effect;
}

bool isEffect(const TraceEvent& event) {
    return event.contains("out") || event.contains("expect") || (event.contains("in") && event["in"] == "end");
}

std::map<std::string, Channel> channelsOf(const Recording& recording, const std::vector<ReplayedEffect>& happened) {
    std::map<std::string, Channel> channels;
    for (const auto& [event, line, text] : recording.events) {
        if (isEffect(event)) {
            channels[channelOf(event)].recorded.push_back({effectOf(event), line});
        }
    }
    for (const auto& [event, line] : happened) {
        channels[channelOf(event)].happened.push_back({effectOf(event), line});
    }
    return channels;
}

} // namespace deskwatch
