#ifndef DESKWATCH_TIME_ORDER_H
#define DESKWATCH_TIME_ORDER_H

#include <chrono>
#include <functional>
#include <map>

#include "recording/timeline.h"

namespace deskwatch {

/// Brings what several sources report into the order of time: holds each entry for a turn, in which earlier ones may
/// still come. Entries of the same time keep the order in which they came.
class TimeOrder {
public:
    using Tell = std::function<void(const TimelineEntry& entry)>;

    explicit TimeOrder(Tell tell) : tell_(std::move(tell)) {}

    /// Takes an entry, which has a time.
    void add(TimelineEntry entry);

    /// Tells what is held since the last turn or longer, and what is earlier than that. What a clock that was set back
    /// left in the future waits no longer than others.
    void turn();

    /// Tells all that is held.
    void end();

    bool isEmpty() const { return held_.empty(); }

private:
    struct Held {
        TimelineEntry entry;
        bool isDue = false;
    };

    using ByTime = std::multimap<std::chrono::system_clock::time_point, Held>;

    void tellUntil(ByTime::const_iterator end);

    Tell tell_;
    ByTime held_;
};

} // namespace deskwatch

#endif
