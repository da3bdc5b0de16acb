#ifndef FAKE_SETTINGS_STORE_H
#define FAKE_SETTINGS_STORE_H

#include <vconf.h>

#include <deque>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace fake {

/// The keys of vconf and who watches them. A change reaches its watchers when the test delivers it.
class SettingsStore {
public:
    using Value = std::variant<int, std::string>;

    /// Changes a key as another part of the device would; its watchers hear of it with deliverChanges().
    void setKeyAsDevice(const std::string& key, const Value& value);

    /// Takes a key away, as if it had never been set.
    void unset(const std::string& key) { values_.erase(key); }

    /// Tells the watchers of every change since the last time, those that they make meanwhile included.
    void deliverChanges();

    std::optional<int> integer(const std::string& key) const;
    std::optional<std::string> text(const std::string& key) const;

    /// Whether a key lies in one of the stores and has no empty part.
    static bool isKey(const char* key);

    void watch(const std::string& key, vconf_callback_fn callback, void* userData);
    bool ignore(const std::string& key, vconf_callback_fn callback);

    /// Ends all watches, with the process that had them.
    void ignoreAll();

private:
    struct Watch {
        std::string key;
        vconf_callback_fn callback;
        void* userData;
    };

    bool isWatched(const Watch& watch) const;

    std::map<std::string, Value> values_;
    std::vector<Watch> watches_;
    std::deque<std::string> changes_;
};

} // namespace fake

#endif
