#include "recording/time_order.h"

#include <algorithm>
#include <utility>

namespace deskwatch {

void TimeOrder::add(TimelineEntry entry) {
    const auto time = entry.time.value();
    held_.emplace(time, Held{std::move(entry), false});
}

void TimeOrder::turn() {
    const auto lastDue =
        std::find_if(held_.rbegin(), held_.rend(), [](const auto& timed) { return timed.second.isDue; });
    tellUntil(lastDue.base());
    for (auto& [time, held] : held_) {
        held.isDue = true;
    }
}

void TimeOrder::end() {
    tellUntil(held_.end());
}

void TimeOrder::tellUntil(ByTime::const_iterator end) {
    while (held_.cbegin() != end) {
        tell_(held_.extract(held_.cbegin()).mapped().entry);
    }
}

} // namespace deskwatch
