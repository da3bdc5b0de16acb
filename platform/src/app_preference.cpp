// An application's preferences are dconf keys below /apps/<application id>/. A getter whose key holds another type
// answers PREFERENCE_ERROR_INVALID_PARAMETER; a setter replaces whatever was there.

#include "app_preference.h"

#include "environment.h"
#include "guard.h"
#include "settings_store.h"
#include "text.h"

using host::guarded;
using host::SettingsStore;

namespace {

// Where a preference is kept; empty for an invalid key.
std::string preferencePath(const char* key) {
    if (key == nullptr) {
        return {};
    }
    const std::string path = "/apps/" + host::Environment::get().applicationId() + "/" + key;
    return SettingsStore::isKey(path) ? path : std::string();
}

template <class MakeValue>
int setPreference(const char* function, const char* key, MakeValue makeValue) {
    return guarded<int>(function, PREFERENCE_ERROR_IO_ERROR, [&] {
        const std::string path = preferencePath(key);
        if (path.empty()) {
            return PREFERENCE_ERROR_INVALID_PARAMETER;
        }
        SettingsStore::get().write(path, makeValue());
        return PREFERENCE_ERROR_NONE;
    });
}

template <class TakeValue>
int getPreference(const char* function, const char* key, const GVariantType* type, TakeValue takeValue) {
    return guarded<int>(function, PREFERENCE_ERROR_IO_ERROR, [&] {
        const std::string path = preferencePath(key);
        if (path.empty()) {
            return PREFERENCE_ERROR_INVALID_PARAMETER;
        }
        const c::VariantOwner value = SettingsStore::get().read(path);
        if (value == nullptr) {
            return PREFERENCE_ERROR_NO_KEY;
        }
        if (!g_variant_is_of_type(value.get(), type)) {
            return PREFERENCE_ERROR_INVALID_PARAMETER;
        }
        takeValue(value.get());
        return PREFERENCE_ERROR_NONE;
    });
}

} // namespace

int preference_set_int(const char* key, int value) {
    return setPreference(__func__, key, [&] { return g_variant_new_int32(value); });
}

int preference_get_int(const char* key, int* value) {
    if (value == nullptr) {
        return PREFERENCE_ERROR_INVALID_PARAMETER;
    }
    return getPreference(__func__, key, G_VARIANT_TYPE_INT32,
                         [&](GVariant* stored) { *value = g_variant_get_int32(stored); });
}

int preference_set_boolean(const char* key, bool value) {
    return setPreference(__func__, key, [&] { return g_variant_new_boolean(value ? TRUE : FALSE); });
}

int preference_get_boolean(const char* key, bool* value) {
    if (value == nullptr) {
        return PREFERENCE_ERROR_INVALID_PARAMETER;
    }
    return getPreference(__func__, key, G_VARIANT_TYPE_BOOLEAN,
                         [&](GVariant* stored) { *value = g_variant_get_boolean(stored) != FALSE; });
}

int preference_set_double(const char* key, double value) {
    return setPreference(__func__, key, [&] { return g_variant_new_double(value); });
}

int preference_get_double(const char* key, double* value) {
    if (value == nullptr) {
        return PREFERENCE_ERROR_INVALID_PARAMETER;
    }
    return getPreference(__func__, key, G_VARIANT_TYPE_DOUBLE,
                         [&](GVariant* stored) { *value = g_variant_get_double(stored); });
}

int preference_set_string(const char* key, const char* value) {
    if (value == nullptr || !host::isUtf8(value)) {
        return PREFERENCE_ERROR_INVALID_PARAMETER;
    }
    return setPreference(__func__, key, [&] { return g_variant_new_string(value); });
}

int preference_get_string(const char* key, char** value) {
    if (value == nullptr) {
        return PREFERENCE_ERROR_INVALID_PARAMETER;
    }
    return getPreference(__func__, key, G_VARIANT_TYPE_STRING, [&](GVariant* stored) {
        *value = host::copyForCaller(g_variant_get_string(stored, nullptr));
    });
}

int preference_is_existing(const char* key, bool* existing) {
    return guarded<int>(__func__, PREFERENCE_ERROR_IO_ERROR, [&] {
        const std::string path = preferencePath(key);
        if (path.empty() || existing == nullptr) {
            return PREFERENCE_ERROR_INVALID_PARAMETER;
        }
        *existing = SettingsStore::get().read(path) != nullptr;
        return PREFERENCE_ERROR_NONE;
    });
}
