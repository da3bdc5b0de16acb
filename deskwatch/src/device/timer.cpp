#include "device/timer.h"

#include <utility>

#include "device/patience.h"

namespace deskwatch {

void Timer::start(std::chrono::milliseconds delay, std::function<void()> act) {
    stop();
    act_ = std::move(act);
    source_ = g_timeout_add(static_cast<guint>(inMilliseconds(delay)), onTime, this);
}

void Timer::repeat(std::chrono::milliseconds period, std::function<void()> act) {
    stop();
    act_ = std::move(act);
    source_ = g_timeout_add(static_cast<guint>(inMilliseconds(period)), onPeriod, this);
}

void Timer::stop() {
    if (isRunning()) {
        g_source_remove(std::exchange(source_, 0));
    }
}

gboolean Timer::onTime(gpointer self) {
    auto& timer = *static_cast<Timer*>(self);
    timer.source_ = 0;
    const auto act = std::move(timer.act_); // it may start the timer again, or destroy it
    act();
    return G_SOURCE_REMOVE;
}

gboolean Timer::onPeriod(gpointer self) {
    static_cast<Timer*>(self)->act_();
    return G_SOURCE_CONTINUE;
}

} // namespace deskwatch
