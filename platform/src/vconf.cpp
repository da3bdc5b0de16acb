// The shared settings are dconf keys below /vconf/. A write makes news even when the key keeps its value, of which
// dconf would tell nobody: each write changes a mark of its own with the key (see vconf_watches.h).

#include "vconf.h"

#include "bus_values.h"
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

// What a getter leaves in *intval when it finds a text: the number is lost on devices, too.
constexpr int overwritten = 1970037110;

std::string keyPath(const char* key) {
    return key != nullptr ? vconfPath(key) : std::string();
}

} // namespace

int vconf_get_int(const char* in_key, int* intval) {
    return guarded(__func__, failure, [&] {
        const std::string path = keyPath(in_key);
        const c::VariantOwner value = path.empty() || intval == nullptr ? nullptr : SettingsStore::get().read(path);
        if (value == nullptr) {
            return failure;
        }
        const auto number = host::intOf(value.get());
        *intval = number.value_or(overwritten);
        return number ? 0 : failure;
    });
}

int vconf_set_int(const char* in_key, const int intval) {
    return guarded(__func__, failure, [&] {
        if (keyPath(in_key).empty()) {
            return failure;
        }
        host::writeVconf(in_key, g_variant_new_int32(intval));
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
        if (keyPath(in_key).empty() || strval == nullptr || !host::isUtf8(strval)) {
            return failure;
        }
        host::writeVconf(in_key, g_variant_new_string(strval));
        return 0;
    });
}

int vconf_notify_key_changed(const char* in_key, vconf_callback_fn cb, void* user_data) {
    return guarded(__func__, failure, [&] {
        const bool valid = cb != nullptr && !keyPath(in_key).empty();
        return valid && VconfWatches::get().add(in_key, cb, user_data) ? 0 : failure;
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
    return keynode != nullptr ? keynode->number.value_or(failure) : 0;
}

char* vconf_keynode_get_str(keynode_t* keynode) {
    return keynode != nullptr && keynode->text ? keynode->text->data() : nullptr;
}
