#ifndef PLATFORM_SETTINGS_STORE_H
#define PLATFORM_SETTINGS_STORE_H

#include <functional>
#include <list>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "bus.h"

typedef struct _DConfClient DConfClient; // NOLINT(modernize-use-using): repeats the library's own declaration

namespace host {

/// The device's settings, kept by dconf. A path is "/" and names joined by "/"; a folder's path ends in "/".
///
/// A write returns when the store's one writer has it on disk, and a read sees it at once. News of a change, one's own
/// included, comes later through the main loop, in order with what else comes over the bus.
class SettingsStore {
public:
    /// Told the path that changed: a key, or a folder when everything below it may have changed.
    using Listener = std::function<void(const std::string& path)>;
    using Listeners = std::list<Listener>;

    /// The process's one store. Throws HostError when the bus cannot be reached.
    static SettingsStore& get();

    SettingsStore(const SettingsStore&) = delete;
    SettingsStore& operator=(const SettingsStore&) = delete;
    ~SettingsStore();

    /// Whether a text is a path of a key.
    static bool isKey(const std::string& path);

    /// The value of a key, or null.
    c::VariantOwner read(const std::string& key);

    std::optional<int> readInt(const std::string& key);
    std::optional<std::string> readText(const std::string& key);

    /// Writes a key and consumes a floating value. Throws HostError.
    void write(const std::string& key, GVariant* value);

    /// Keys and their new values, in order; null removes a key.
    using Changes = std::vector<std::pair<std::string, GVariant*>>;

    /// Makes all changes in one step and consumes floating values. Throws HostError.
    void change(const Changes& changes);

    /// The changes that remove what is in a folder, its own folders aside.
    Changes removalOf(const std::string& folder);

    /// The names of what is in a folder; those of folders end in "/".
    std::vector<std::string> list(const std::string& folder);

    /// Starts and ends listening to a key, or to all below a folder; a key can be watched several times.
    void watch(const std::string& key);
    void unwatch(const std::string& key);

    /// Returns when the main loop has the news of every change that was made before, so that it tells the listeners
    /// before it does what is added to it now. Waits for the store's writer, which answers a change before it announces
    /// it.
    void awaitNews();

    /// Whether the store's writer answers, started when it does not run.
    bool isReachable();

    /// Adds a listener to the changes of all watched keys. Listeners are told in the order in which they were added.
    Listeners::iterator addListener(Listener listener) {
        return listeners_.insert(listeners_.end(), std::move(listener));
    }

    /// Not to be called by a listener.
    void removeListener(Listeners::iterator listener) { listeners_.erase(listener); }

private:
    SettingsStore();

    static void onNews(GDBusConnection* connection, const char* sender, const char* path, const char* interface,
                       const char* signal, GVariant* arguments, gpointer self);

    Bus& bus_;
    c::ObjectOwner<DConfClient> client_;
    guint subscription_;
    Listeners listeners_;
};

} // namespace host

#endif
