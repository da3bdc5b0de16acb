#ifndef DESKWATCH_END_REQUEST_H
#define DESKWATCH_END_REQUEST_H

#include <glib.h>

#include <array>
#include <csignal>
#include <functional>

namespace deskwatch {

/// While one lives, SIGINT, SIGTERM and SIGHUP do not end this process in the middle of something: the last of them is
/// noted, cuts a system call short that waits, and wakes who waits for it. Signals that the process ignores stay
/// ignored.
class EndRequest {
public:
    EndRequest();
    ~EndRequest();
    EndRequest(const EndRequest&) = delete;
    EndRequest& operator=(const EndRequest&) = delete;

    bool isNoted() const;

    /// Ends this process as the noted signal would have; returns when there was none.
    void obey() const;

    /// Can be read from when a signal is noted on: for those who wait for several things. Stays the process's.
    int descriptor() const;

    /// Has the default main loop call a function, once, when a signal is noted, also when it was noted before.
    void whenNoted(std::function<void()> act);

private:
    static constexpr std::array<int, 3> signals{SIGINT, SIGTERM, SIGHUP};

    static gboolean onNoted(int descriptor, GIOCondition condition, gpointer self);

    std::array<struct sigaction, 3> earlier_{};
    std::function<void()> act_;
    guint source_ = 0;
};

} // namespace deskwatch

#endif
