// The shared settings are dconf keys below /vconf/. Setting a key to its present value is not a change, and calls
// no watch.

#include "vconf.h"

#include "guard.h"
#include "keynode.h"
#include "settings_store.h"
#include "text.h"
#include "vconf_watches.h"

using host::guarded;
using host::SettingsStore;
using host::vconfPath;
using host::VconfWatches;

namespace {

constexpr int failure = -1;

std::string keyPath(const char* key) {
    return key != nullptr ? vconfPath(key) : std::string();
}

} // namespace

int vconf_get_int(const char* in_key, int* intval) {
    return guarded(__func__, failure, [&] {
        const std::string path = keyPath(in_key);
        const auto value = path.empty() || intval == nullptr ? std::nullopt : SettingsStore::get().readInt(path);
        if (!value) {
            return failure;
        }
        *intval = *value;
        return 0;
    });
}

int vconf_set_int(const char* in_key, const int intval) {
    return guarded(__func__, failure, [&] {
        const std::string path = keyPath(in_key);
        if (path.empty()) {
            return failure;
        }
        SettingsStore::get().write(path, g_variant_new_int32(intval));
        return 0;
    });
}

char* vconf_get_str(const char* in_key) {
    return guarded<char*>(__func__, nullptr, [&]() -> char* {
        const std::string path = keyPath(in_key);
        const auto value = path.empty() ? std::nullopt : SettingsStore::get().readText(path);
        return value ? host::copyForCaller(*value) : nullptr;
    });
}

int vconf_set_str(const char* in_key, const char* strval) {
    return guarded(__func__, failure, [&] {
        const std::string path = keyPath(in_key);
        if (path.empty() || strval == nullptr || !host::isUtf8(strval)) {
            return failure;
        }
        SettingsStore::get().write(path, g_variant_new_string(strval));
        return 0;
    });
}

int vconf_notify_key_changed(const char* in_key, vconf_callback_fn cb, void* user_data) {
    return guarded(__func__, failure, [&] {
        if (cb == nullptr || keyPath(in_key).empty()) {
            return failure;
        }
        VconfWatches::get().add(in_key, cb, user_data);
        return 0;
    });
}

int vconf_ignore_key_changed(const char* in_key, vconf_callback_fn cb) {
    return guarded(__func__, failure, [&] {
        const bool valid = cb != nullptr && !keyPath(in_key).empty();
        return valid && VconfWatches::get().remove(in_key, cb) ? 0 : failure;
    });
}

char* vconf_keynode_get_name(keynode_t* keynode) {
    return keynode != nullptr ? keynode->name.data() : nullptr;
}

int vconf_keynode_get_int(keynode_t* keynode) {
    return keynode != nullptr ? keynode->number.value_or(0) : 0;
}

char* vconf_keynode_get_str(keynode_t* keynode) {
    return keynode != nullptr && keynode->text ? keynode->text->data() : nullptr;
}
