#include <app_preference.h>

#include "fake_platform.h"

using fake::FakePlatform;

namespace {

template <typename Value, typename Argument>
int set(const char* function, const char* key, const Argument& value) {
    auto& platform = FakePlatform::current();
    if (const auto fault = platform.call(function, key, value)) {
        return *fault;
    }
    if (key == nullptr) {
        return PREFERENCE_ERROR_INVALID_PARAMETER;
    }
    platform.preferences[key] = Value(value);
    return PREFERENCE_ERROR_NONE;
}

template <typename Value>
int get(const char* function, const char* key, Value* value) {
    auto& platform = FakePlatform::current();
    if (const auto fault = platform.call(function, key)) {
        return *fault;
    }
    if (key == nullptr || value == nullptr) {
        return PREFERENCE_ERROR_INVALID_PARAMETER;
    }
    const auto stored = platform.preferences.find(key);
    if (stored == platform.preferences.end()) {
        return PREFERENCE_ERROR_NO_KEY;
    }
    if (!std::holds_alternative<Value>(stored->second)) {
        return PREFERENCE_ERROR_IO_ERROR;
    }
    *value = std::get<Value>(stored->second);
    return PREFERENCE_ERROR_NONE;
}

} // namespace

int preference_set_int(const char* key, int value) {
    return set<int>("preference_set_int", key, value);
}
int preference_get_int(const char* key, int* value) {
    return get("preference_get_int", key, value);
}
int preference_set_boolean(const char* key, bool value) {
    return set<bool>("preference_set_boolean", key, value);
}
int preference_get_boolean(const char* key, bool* value) {
    return get("preference_get_boolean", key, value);
}
int preference_set_double(const char* key, double value) {
    return set<double>("preference_set_double", key, value);
}
int preference_get_double(const char* key, double* value) {
    return get("preference_get_double", key, value);
}

int preference_set_string(const char* key, const char* value) {
    if (value == nullptr) {
        const auto fault = FakePlatform::current().call("preference_set_string", key, value);
        return fault.value_or(PREFERENCE_ERROR_INVALID_PARAMETER);
    }
    return set<std::string>("preference_set_string", key, value);
}

int preference_get_string(const char* key, char** value) {
    std::string text;
    const int result = get("preference_get_string", key, value == nullptr ? nullptr : &text);
    if (result == PREFERENCE_ERROR_NONE && value != nullptr) {
        *value = FakePlatform::current().handOut(text);
    }
    return result;
}

int preference_is_existing(const char* key, bool* existing) {
    auto& platform = FakePlatform::current();
    if (const auto fault = platform.call("preference_is_existing", key)) {
        return *fault;
    }
    if (key == nullptr || existing == nullptr) {
        return PREFERENCE_ERROR_INVALID_PARAMETER;
    }
    *existing = platform.preferences.count(key) != 0;
    return PREFERENCE_ERROR_NONE;
}
