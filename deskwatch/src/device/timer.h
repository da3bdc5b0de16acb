#ifndef DESKWATCH_TIMER_H
#define DESKWATCH_TIMER_H

#include <glib.h>

#include <chrono>
#include <functional>

namespace deskwatch {

/// Has the default main loop call a function when a time has passed. It is for one thing at a time: each start forgets
/// the one before, and destroying it forgets the last.
class Timer {
public:
    Timer() = default;
    ~Timer() { stop(); }
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;

    /// Calls `act` once. It may start the timer again.
    void start(std::chrono::milliseconds delay, std::function<void()> act);

    /// Calls `act` again and again. It must not start the timer.
    void repeat(std::chrono::milliseconds period, std::function<void()> act);

    void stop();

    /// Whether there is still a call to come.
    bool isRunning() const { return source_ != 0; }

private:
    static gboolean onTime(gpointer self);
    static gboolean onPeriod(gpointer self);

    std::function<void()> act_;
    guint source_ = 0;
};

} // namespace deskwatch

#endif
