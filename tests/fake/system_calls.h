#ifndef FAKE_SYSTEM_CALLS_H
#define FAKE_SYSTEM_CALLS_H

#include <glib.h>
#include <sys/types.h>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace fake {

/// What the service asks of the machine itself. These functions of libraries are taken over when a test is linked, for
/// the service's own calls alone: g_usleep, g_timeout_add_seconds, g_source_remove, getpwnam_r, sysconf, open, fclose,
/// rename, mkdir, chmod, unlink, g_dbus_node_info_new_for_xml, malloc, free, operator new that does not throw, and the
/// functions of SQLite that open, prepare, bind, step and close.
class SystemCalls {
public:
    /// The users that exist.
    std::map<std::string, uid_t> users{{"owner", 5001}};

    /// What sysconf answers about the size of a user entry; the machine's answer when nothing is set.
    std::optional<long> userEntrySize;

    /// Files that the service finds elsewhere than where it looks.
    std::map<std::string, std::string> movedFiles;

    /// What happens while the service sleeps; null for nothing.
    std::function<void()> whileSleeping;

    /// The statements of SQLite that were prepared and not finalized.
    int statements = 0;

    /// The statement of each step, in order, as long as the journal is kept.
    std::vector<std::string> steps;

    guint addTimer(guint seconds, GSourceFunc callback, gpointer userData);
    bool removeTimer(guint id) { return timers_.erase(id) != 0; }
    void removeAllTimers() { timers_.clear(); }
    std::size_t timers() const { return timers_.size(); }

    /// Lets time pass: the timers that fall due fire in their order.
    void passSeconds(guint seconds);

private:
    struct Timer {
        guint due;
        guint interval;
        GSourceFunc callback;
        gpointer userData;
    };

    std::optional<guint> nextTimer(guint until) const;
    void fire(guint id);

    std::map<guint, Timer> timers_;
    guint now_ = 0;
    // Far from the ids of GLib's own sources.
    guint lastId_ = 1000000;
};

} // namespace fake

#endif
