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

/// The keys of vconf and who watches them. A write reaches its watchers when the test delivers it, whether or not the
/// value is another one: with the value of that time, and once for writes that no other watched key came between.
class SettingsStore {
public:
    using Value = std::variant<int, std::string>;

    /// Writes a key as another part of the device would; its watchers hear of it with deliverChanges().
    void setKeyAsDevice(const std::string& key, const Value& value);

    /// Takes a key away, as if it had never been set.
    void unset(const std::string& key) { values_.erase(key); }

    /// Tells the watchers of every write since the last time, those that they make meanwhile included.
    void deliverChanges();

    std::optional<int> integer(const std::string& key) const;
    std::optional<std::string> text(const std::string& key) const;

    /// Whether a key lies in one of the stores and has no empty part.
    static bool isKey(const char* key);

    /// The value of a key; none when it was never set.
    std::optional<Value> value(const std::string& key) const;

    /// Adds a watch for later writes. False when the key was never set or the callback watches it already.
    bool watch(const std::string& key, vconf_callback_fn callback, void* userData);
    bool ignore(const std::string& key, vconf_callback_fn callback);

    /// Ends all watches, with the process that had them.
    void ignoreAll();

private:
    struct Watch {
        std::string key;
        vconf_callback_fn callback;
        void* userData;
        int writesBefore;
    };

    struct Change {
        std::string key;
        int write; // its number, from 1
    };

    std::map<std::string, Value> values_;
    std::vector<Watch> watches_;
    std::deque<Change> changes_;
    int writes_ = 0;
};

} // namespace fake

#endif
