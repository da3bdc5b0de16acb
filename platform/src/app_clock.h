#ifndef TESK_APP_CLOCK_H
#define TESK_APP_CLOCK_H

#include <glib.h>

#include <map>

namespace host {

/// The time by which an application waits when its environment says that the clock of the watch stands: it passes when
/// somebody says so. Otherwise the machine's clock goes for everything.
///
/// It is the application's use of g_timeout_add_seconds that follows this clock: GLib's own waiting, such as for the
/// answer of the bus, is about the machine.
class AppClock {
public:
    static AppClock& get();
    AppClock(const AppClock&) = delete;
    AppClock& operator=(const AppClock&) = delete;

    bool isStanding() const { return isStanding_; }

    /// A source of the main context that calls `function` after that time, again and again while it returns true.
    guint addTimeout(guint seconds, GSourceFunc function, gpointer data);

    /// Lets time pass. What is due by then is called before everything else that the main loop has to do.
    void advance(guint seconds);

private:
    struct Timeout;

    AppClock();

    static gboolean dispatch(GSource* source, GSourceFunc function, gpointer data);
    static void forget(GSource* source);

    bool isStanding_;
    guint64 now_ = 0;
    /// When each source is due.
    std::multimap<guint64, GSource*> due_;
};

} // namespace host

#endif
