#ifndef DESKWATCH_CHANNELS_H
#define DESKWATCH_CHANNELS_H

#include <map>
#include <string>
#include <vector>

#include "replay/replay.h"

namespace deskwatch {

/// The effects of one kind and one receiver. They have an order; those of different channels have none, because the
/// receivers are processes that run side by side.
struct Channel {
    std::vector<ReplayedEffect> recorded;
    std::vector<ReplayedEffect> happened;
};

/// What the event is as an effect: the ends of the service are compared by whether they were sudden, and a check of
/// which no findings are told is to find nothing.
TraceEvent effectOf(const TraceEvent& event);

/// Whether the event is an effect, ends the service, or states what is expected of the watch.
bool isEffect(const TraceEvent& event);

/// All effects by channel.
std::map<std::string, Channel> channelsOf(const Recording& recording, const std::vector<ReplayedEffect>& happened);

} // namespace deskwatch

#endif
