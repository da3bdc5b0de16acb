#include <vconf.h>

#include <algorithm>

#include "fake_platform.h"

struct _keynode_t {
    std::string name;
    fake::SettingsStore::Value value;
};

namespace fake {

void SettingsStore::setKeyAsDevice(const std::string& key, const Value& value) {
    values_[key] = value;
    ++writes_;
    const bool isWatched =
        std::any_of(watches_.begin(), watches_.end(), [&](const Watch& watch) { return watch.key == key; });
    if (!isWatched) {
        return;
    }
    if (!changes_.empty() && changes_.back().key == key) {
        changes_.pop_back();
    }
    changes_.push_back({key, writes_});
}

void SettingsStore::deliverChanges() {
    while (!changes_.empty()) {
        const Change change = changes_.front();
        changes_.pop_front();
        // A copy: one that a callback ends is called once more, as on devices.
        const auto watches = watches_;
        for (const auto& watch : watches) {
            const auto present = value(change.key);
            if (watch.key == change.key && watch.writesBefore < change.write && present) {
                keynode_t node{change.key, *present};
                watch.callback(&node, watch.userData);
            }
        }
    }
}

std::optional<SettingsStore::Value> SettingsStore::value(const std::string& key) const {
    const auto found = values_.find(key);
    return found == values_.end() ? std::nullopt : std::optional(found->second);
}

std::optional<int> SettingsStore::integer(const std::string& key) const {
    const auto value = values_.find(key);
    const auto* number = value == values_.end() ? nullptr : std::get_if<int>(&value->second);
    return number == nullptr ? std::nullopt : std::optional(*number);
}

std::optional<std::string> SettingsStore::text(const std::string& key) const {
    const auto value = values_.find(key);
    const auto* text = value == values_.end() ? nullptr : std::get_if<std::string>(&value->second);
    return text == nullptr ? std::nullopt : std::optional(*text);
}

bool SettingsStore::isKey(const char* key) {
    const std::string text(key == nullptr ? "" : key);
    const auto slash = text.find('/');
    const auto store = text.substr(0, slash);
    return (store == "db" || store == "file" || store == "memory") && slash != std::string::npos &&
           text.back() != '/' && text.find("//") == std::string::npos;
}

bool SettingsStore::watch(const std::string& key, vconf_callback_fn callback, void* userData) {
    const bool isWatching = std::any_of(watches_.begin(), watches_.end(), [&](const Watch& watch) {
        return watch.key == key && watch.callback == callback;
    });
    if (isWatching || !value(key)) {
        return false;
    }
    watches_.push_back({key, callback, userData, writes_});
    return true;
}

bool SettingsStore::ignore(const std::string& key, vconf_callback_fn callback) {
    const auto end = std::remove_if(watches_.begin(), watches_.end(),
                                    [&](const Watch& watch) { return watch.key == key && watch.callback == callback; });
    const bool found = end != watches_.end();
    watches_.erase(end, watches_.end());
    return found;
}

void SettingsStore::ignoreAll() {
    watches_.clear();
    changes_.clear();
}

} // namespace fake

using fake::FakePlatform;

int vconf_get_int(const char* in_key, int* intval) {
    auto& platform = FakePlatform::current();
    if (const auto fault = platform.call("vconf_get_int", in_key)) {
        return *fault;
    }
    const auto value = in_key == nullptr ? std::nullopt : platform.settings.value(in_key);
    if (!value || intval == nullptr) {
        return -1;
    }
    const int* number = std::get_if<int>(&*value);
    *intval = number != nullptr ? *number : fake::overwritten;
    return number != nullptr ? 0 : -1;
}

int vconf_set_int(const char* in_key, const int intval) {
    auto& platform = FakePlatform::current();
    if (const auto fault = platform.call("vconf_set_int", in_key, intval)) {
        return *fault;
    }
    if (!fake::SettingsStore::isKey(in_key)) {
        return -1;
    }
    platform.settings.setKeyAsDevice(in_key, intval);
    return 0;
}

char* vconf_get_str(const char* in_key) {
    auto& platform = FakePlatform::current();
    if (platform.call("vconf_get_str", in_key) || in_key == nullptr) {
        return nullptr;
    }
    const auto text = platform.settings.text(in_key);
    return text ? platform.handOut(*text) : nullptr;
}

int vconf_set_str(const char* in_key, const char* strval) {
    auto& platform = FakePlatform::current();
    if (const auto fault = platform.call("vconf_set_str", in_key, strval)) {
        return *fault;
    }
    if (!fake::SettingsStore::isKey(in_key) || strval == nullptr) {
        return -1;
    }
    platform.settings.setKeyAsDevice(in_key, std::string(strval));
    return 0;
}

int vconf_notify_key_changed(const char* in_key, vconf_callback_fn cb, void* user_data) {
    auto& platform = FakePlatform::current();
    if (const auto fault = platform.call("vconf_notify_key_changed", in_key)) {
        return *fault;
    }
    const bool isValid = fake::SettingsStore::isKey(in_key) && cb != nullptr;
    return isValid && platform.settings.watch(in_key, cb, user_data) ? 0 : -1;
}

int vconf_ignore_key_changed(const char* in_key, vconf_callback_fn cb) {
    auto& platform = FakePlatform::current();
    if (const auto fault = platform.call("vconf_ignore_key_changed", in_key)) {
        return *fault;
    }
    return in_key != nullptr && platform.settings.ignore(in_key, cb) ? 0 : -1;
}

char* vconf_keynode_get_name(keynode_t* keynode) {
    return keynode == nullptr ? nullptr : keynode->name.data();
}

int vconf_keynode_get_int(keynode_t* keynode) {
    if (keynode == nullptr) {
        return 0;
    }
    const auto* value = std::get_if<int>(&keynode->value);
    return value == nullptr ? -1 : *value;
}

char* vconf_keynode_get_str(keynode_t* keynode) {
    auto* value = keynode == nullptr ? nullptr : std::get_if<std::string>(&keynode->value);
    return value == nullptr ? nullptr : value->data();
}
