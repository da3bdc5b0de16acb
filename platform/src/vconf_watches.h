#ifndef PLATFORM_VCONF_WATCHES_H
#define PLATFORM_VCONF_WATCHES_H

#include <list>
#include <string>

#include "settings_store.h"
#include "vconf.h"

namespace host {

/// The path of a vconf key in the settings store; empty for an invalid key.
std::string vconfPath(const char* key);

/// Writes a valid key, so that its watches hear of it, and consumes a floating value. Throws HostError.
void writeVconf(const std::string& key, GVariant* value);

/// The callbacks of this process that wait for keys to be written.
///
/// The news of a write is that of the key's mark, which gets another value with each write: the store tells nobody of a
/// value that stays the same. Keys are queued in the order of their news, and their callbacks run once the news of all
/// writes up to then has come. So quick writes of a key are heard as one.
///
/// A watch begins once the main loop has passed the news that was there when it was added, since that of earlier writes
/// is none to it.
class VconfWatches {
public:
    static VconfWatches& get();

    /// Adds a watch for the writes that come after. False when there is no such key, or the callback watches it
    /// already.
    bool add(const std::string& key, vconf_callback_fn callback, void* userData);

    /// Ends a watch. False when there is none. Safe while callbacks run.
    bool remove(const std::string& key, vconf_callback_fn callback);

    /// Calls the watches of the keys whose news has come.
    void tellNews();

private:
    struct Watch {
        std::string key;
        vconf_callback_fn callback;
        void* userData;
        int number;
    };
    using Watches = std::list<Watch>;

    struct News {
        std::string key;
        int begun; // the number of the last watch that had begun
    };

    explicit VconfWatches(SettingsStore& store);

    Watches::iterator find(const std::string& key, vconf_callback_fn callback);
    void queue(const std::string& changedPath);
    void tell(const News& news);

    static gboolean onBegin(gpointer self);
    static gboolean onDue(gpointer self);

    SettingsStore& store_;
    Watches watches_;
    int added_ = 0;
    int begun_ = 0;
    std::list<News> news_;
};

} // namespace host

#endif
