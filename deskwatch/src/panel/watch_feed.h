#ifndef DESKWATCH_WATCH_FEED_H
#define DESKWATCH_WATCH_FEED_H

#include <functional>
#include <list>
#include <optional>

#include "device/device.h"
#include "device/timer.h"
#include "panel/child_process.h"
#include "panel/event_ring.h"
#include "status/file_watch.h"

namespace deskwatch {

/// Brings what a watch is and what happens on it into the ring, as the commands that follow it tell it. They are
/// processes of their own: they end with the watch, and the panel does not.
class WatchFeed {
public:
    /// `tell` is called when there is something new in the ring.
    WatchFeed(const Device& device, EventRing& ring, std::function<void()> tell);

private:
    void look();
    void start();
    void follow(const std::vector<std::string>& arguments, const LineProcess::OnLine& onLine);
    void onEnd();
    void tellWatch(bool isBooted);

    const Device& device_;
    EventRing& ring_;
    std::function<void()> tell_;
    std::list<LineProcess> followers_;
    FileWatch mark_;
    Timer retry_;
    /// Whether the time line was told from its beginning.
    bool isPastTold_ = false;
};

} // namespace deskwatch

#endif
