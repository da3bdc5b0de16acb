// An application's preferences are dconf keys below /apps/<application id>/. A getter whose key holds another type
// answers PREFERENCE_ERROR_INVALID_PARAMETER and has overwritten a number or a boolean; a setter replaces whatever was
// there.

#include "app_preference.h"

#include "environment.h"
#include "guard.h"
#include "settings_store.h"
#include "text.h"

using host::guarded;
using host::SettingsStore;

namespace {

// What a getter leaves in *value when it finds a value of another type.
constexpr int overwritten = 1970037110;

// Runs a function's body with the path of a preference. A key that cannot be one is refused.
template <class Body>
int withPreference(const char* function, const char* key, Body&& body) {
    return guarded<int>(function, PREFERENCE_ERROR_IO_ERROR, [&]() -> int {
        if (key == nullptr) {
            return PREFERENCE_ERROR_INVALID_PARAMETER;
        }
        if (*key == '\0') {
            return PREFERENCE_ERROR_IO_ERROR;
        }
        const std::string path = "/apps/" + host::Environment::get().applicationId() + "/" + key;
        return SettingsStore::isKey(path) ? body(path) : PREFERENCE_ERROR_INVALID_PARAMETER;
    });
}

template <class MakeValue>
int setPreference(const char* function, const char* key, MakeValue makeValue) {
    return withPreference(function, key, [&](const std::string& path) {
        SettingsStore::get().write(path, makeValue());
        return PREFERENCE_ERROR_NONE;
    });
}

template <class TakeValue, class Overwrite>
int getPreference(const char* function, const char* key, const GVariantType* type, TakeValue takeValue,
                  Overwrite overwrite) {
    return withPreference(function, key, [&](const std::string& path) {
        const c::VariantOwner value = SettingsStore::get().read(path);
        if (value == nullptr) {
            return PREFERENCE_ERROR_NO_KEY;
        }
        if (!g_variant_is_of_type(value.get(), type)) {
            overwrite();
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
    return getPreference(
        __func__, key, G_VARIANT_TYPE_INT32, [&](GVariant* stored) { *value = g_variant_get_int32(stored); },
        [&] { *value = overwritten; });
}

int preference_set_boolean(const char* key, bool value) {
    return setPreference(__func__, key, [&] { return g_variant_new_boolean(value ? TRUE : FALSE); });
}

int preference_get_boolean(const char* key, bool* value) {
    if (value == nullptr) {
        return PREFERENCE_ERROR_INVALID_PARAMETER;
    }
    return getPreference(
        __func__, key, G_VARIANT_TYPE_BOOLEAN,
        [&](GVariant* stored) { *value = g_variant_get_boolean(stored) != FALSE; }, [&] { *value = !*value; });
}

int preference_set_double(const char* key, double value) {
    return setPreference(__func__, key, [&] { return g_variant_new_double(value); });
}

int preference_get_double(const char* key, double* value) {
    if (value == nullptr) {
        return PREFERENCE_ERROR_INVALID_PARAMETER;
    }
    return getPreference(
        __func__, key, G_VARIANT_TYPE_DOUBLE, [&](GVariant* stored) { *value = g_variant_get_double(stored); },
        [&] { *value = overwritten; });
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
    return getPreference(
        __func__, key, G_VARIANT_TYPE_STRING,
        [&](GVariant* stored) { *value = host::copyForCaller(g_variant_get_string(stored, nullptr)); }, [] {});
}

int preference_is_existing(const char* key, bool* existing) {
    if (existing == nullptr) {
        return PREFERENCE_ERROR_INVALID_PARAMETER;
    }
    return withPreference(__func__, key, [&](const std::string& path) {
        *existing = SettingsStore::get().read(path) != nullptr;
        return PREFERENCE_ERROR_NONE;
    });
}
