#include "app_clock.h"

#include <algorithm>
#include <cstdlib>
#include <string>

#include "watch_clock.h"

namespace host {

/// The source that GLib allocates; it begins with GLib's part.
struct AppClock::Timeout {
    GSource source;
    guint seconds;
};

AppClock& AppClock::get() {
    static AppClock clock;
    return clock;
}

AppClock::AppClock() {
    const char* clock = std::getenv(watch_clock::variable);
    isStanding_ = clock != nullptr && std::string(clock) == watch_clock::standing;
}

guint AppClock::addTimeout(guint seconds, GSourceFunc function, gpointer data) {
    static GSourceFuncs functions{nullptr, nullptr, dispatch, forget, nullptr, nullptr};
    GSource* source = g_source_new(&functions, sizeof(Timeout));
    reinterpret_cast<Timeout*>(source)->seconds = seconds;
    g_source_set_callback(source, function, data, nullptr);
    due_.emplace(now_ + seconds, source);
    const guint id = g_source_attach(source, nullptr);
    g_source_unref(source);
    return id;
}

void AppClock::advance(guint seconds) {
    now_ += seconds;
    std::for_each(due_.begin(), due_.upper_bound(now_),
                  [](const auto& entry) { g_source_set_ready_time(entry.second, 0); });
}

gboolean AppClock::dispatch(GSource* source, GSourceFunc function, gpointer data) {
    g_source_set_ready_time(source, -1);
    forget(source);
    AppClock& clock = get();
    clock.due_.emplace(clock.now_ + reinterpret_cast<Timeout*>(source)->seconds, source);
    return function(data);
}

void AppClock::forget(GSource* source) {
    auto& due = get().due_;
    const auto found = std::find_if(due.begin(), due.end(), [&](const auto& entry) { return entry.second == source; });
    if (found != due.end()) {
        due.erase(found);
    }
}

} // namespace host

// In place of GLib's, for the application: it stands before GLib in the order of the libraries.
guint g_timeout_add_seconds(guint interval, GSourceFunc function, gpointer data) {
    auto& clock = host::AppClock::get();
    return clock.isStanding() ? clock.addTimeout(interval, function, data)
                              : g_timeout_add_seconds_full(G_PRIORITY_DEFAULT, interval, function, data, nullptr);
}
