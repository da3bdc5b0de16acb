#include "session/shared_keys.h"

#include <vconf.h>

#include <stdexcept>

#include "c_owners.h"
#include "device/plain_text.h"
#include "session/setting_value.h"

namespace deskwatch {
namespace {

std::string pathOf(const std::string& key) {
    const bool hasStore = startsWith(key, "db/") || startsWith(key, "file/") || startsWith(key, "memory/");
    std::string path = "/vconf/" + key;
    if (!hasStore || dconf_is_key(path.c_str(), nullptr) == FALSE) {
        throw std::runtime_error("\"" + key +
                                 "\" is not a key: a key begins with db/, file/ or memory/ and does not end in /");
    }
    return path;
}

/// What the callback of a watched key needs.
struct Watching {
    std::function<bool(const std::string& key, const Value& value)> tell;
    c::MainLoopOwner loop{g_main_loop_new(nullptr, FALSE)};
};

/// The notification does not carry a text where a number was before, and vice versa, so the value is read.
void onChanged(keynode_t* node, void* data) {
    const auto& watching = *static_cast<Watching*>(data);
    const std::string key = vconf_keynode_get_name(node);
    if (!watching.tell(key, readKey(key))) {
        g_main_loop_quit(watching.loop.get());
    }
}

} // namespace

void requireKey(const std::string& key) {
    pathOf(key);
}

Value readKey(const std::string& key) {
    const std::string path = pathOf(key);
    const c::ObjectOwner<DConfClient> store(dconf_client_new());
    return readSetting(store.get(), path);
}

void writeKey(const std::string& key, const Value& value) {
    requireKey(key);
    const int* number = std::get_if<int>(&value);
    const auto* text = std::get_if<std::string>(&value);
    const int result = number != nullptr ? vconf_set_int(key.c_str(), *number)
                                         : vconf_set_str(key.c_str(), text != nullptr ? text->c_str() : nullptr);
    if (result != 0) {
        throw std::runtime_error("cannot set " + key + ": the platform answers " + std::to_string(result));
    }
}

void followKeys(const std::vector<std::string>& keys,
                const std::function<bool(const std::string& key, const Value& value)>& tell) {
    Watching watching{tell};
    for (const auto& key : keys) {
        if (std::holds_alternative<std::monostate>(readKey(key))) {
            throw std::runtime_error("cannot watch " + key + ": it was never set (deskwatch key set makes it)");
        }
        if (vconf_notify_key_changed(key.c_str(), onChanged, &watching) != 0) {
            throw std::runtime_error("cannot watch " + key);
        }
    }
    bool goesOn = true; // the watches stand before the first value is read, so that no change is missed
    for (std::size_t index = 0; goesOn && index < keys.size(); ++index) {
        goesOn = watching.tell(keys[index], readKey(keys[index]));
    }
    if (goesOn) {
        g_main_loop_run(watching.loop.get());
    }
    for (const auto& key : keys) {
        vconf_ignore_key_changed(key.c_str(), onChanged);
    }
}

Value typedValue(const std::string& text) {
    const auto number = wholeNumber(text);
    return number ? Value(*number) : Value(text);
}

} // namespace deskwatch
