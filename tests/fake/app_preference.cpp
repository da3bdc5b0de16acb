#include <app_preference.h>

#include "fake_platform.h"

using fake::answer;
using fake::FakePlatform;

namespace {

int store(const std::string& key, const fake::PreferenceStore::mapped_type& value) {
    if (key.empty()) {
        return PREFERENCE_ERROR_IO_ERROR;
    }
    FakePlatform::current().preferences[key] = value;
    return PREFERENCE_ERROR_NONE;
}

void overwrite(int& value) {
    value = fake::overwritten;
}
void overwrite(bool& value) {
    value = !value;
}
void overwrite(double& value) {
    value = fake::overwritten;
}
void overwrite(std::string& /*value*/) {} // a text stays as it is

template <typename Value, typename Argument>
int set(const char* function, const char* key, const Argument& value) {
    return answer({function, key, value}, {key}, [&] { return store(key, Value(value)); });
}

template <typename Value>
int get(const char* function, const char* key, Value* value) {
    return answer({function, key}, {key, value}, [&]() -> int {
        const auto& preferences = FakePlatform::current().preferences;
        const auto stored = preferences.find(key);
        if (stored == preferences.end()) {
            return PREFERENCE_ERROR_NO_KEY;
        }
        if (!std::holds_alternative<Value>(stored->second)) {
            overwrite(*value);
            return PREFERENCE_ERROR_INVALID_PARAMETER;
        }
        *value = std::get<Value>(stored->second);
        return PREFERENCE_ERROR_NONE;
    });
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
    return answer({"preference_set_string", key, value}, {key, value}, [&] { return store(key, std::string(value)); });
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
    return answer({"preference_is_existing", key}, {key, existing},
                  [&] { *existing = FakePlatform::current().preferences.count(key) != 0; });
}
