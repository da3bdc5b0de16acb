#ifndef PLATFORM_VCONF_WATCHES_H
#define PLATFORM_VCONF_WATCHES_H

#include <list>
#include <memory>
#include <string>

#include "settings_store.h"
#include "vconf.h"

namespace host {

/// The path of a vconf key in the settings store; empty for an invalid key.
std::string vconfPath(const char* key);

/// The callbacks of this process that wait for keys to change.
class VconfWatches {
public:
    static VconfWatches& get();

    /// Adds a watch. A callback that watches the key already gets the new user data.
    void add(const std::string& key, vconf_callback_fn callback, void* userData);

    /// Ends a watch. False when there is none. Safe while callbacks run.
    bool remove(const std::string& key, vconf_callback_fn callback);

private:
    struct Watch {
        std::string key;
        vconf_callback_fn callback;
        void* userData;
        bool ended = false;
    };
    using Watches = std::list<std::shared_ptr<Watch>>;

    explicit VconfWatches(SettingsStore& store);

    Watches::iterator find(const std::string& key, vconf_callback_fn callback);
    void notify(const std::string& changedPath);
    void call(const Watch& watch);

    SettingsStore& store_;
    Watches watches_;
};

} // namespace host

#endif
