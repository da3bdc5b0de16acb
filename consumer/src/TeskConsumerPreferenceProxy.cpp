#include "TeskConsumerPreferenceProxy.h"

#include <app_preference.h>

#include "TeskConsumerLog.h"
#include "TeskConsumerText.h"

const char TESK_PWD_ENFORCE_ACCOUNT_KEY[] = "pref/tesk-agent/pwd_enforce_account_id";

namespace {

/// Whether a call succeeded. A failure is logged in the caller's name.
bool succeeded(const char* call, int result, const TeskConsumerPlace& place = TeskConsumerPlace::here()) {
    if (result != PREFERENCE_ERROR_NONE) {
        TESK_WARN_AT(place, "%s failed: [%d]", call, result);
    }
    return result == PREFERENCE_ERROR_NONE;
}

} // namespace

TeskConsumerPreferenceProxy::~TeskConsumerPreferenceProxy() = default;

template <>
void TeskConsumerPreferenceProxy::set<int>(const std::string& key, int value) {
    succeeded("preference_set_int", preference_set_int(key.c_str(), value));
}

template <>
void TeskConsumerPreferenceProxy::set<bool>(const std::string& key, bool value) {
    succeeded("preference_set_boolean", preference_set_boolean(key.c_str(), value));
}

template <>
void TeskConsumerPreferenceProxy::set<double>(const std::string& key, double value) {
    succeeded("preference_set_double", preference_set_double(key.c_str(), value));
}

template <>
void TeskConsumerPreferenceProxy::set<const char*>(const std::string& key, const char* value) {
    succeeded("preference_set_string", preference_set_string(key.c_str(), value));
}

void TeskConsumerPreferenceProxy::set(const char* key, const char* value) {
    set<const char*>(std::string(key), value);
}

template <>
int TeskConsumerPreferenceProxy::get<int>(const std::string& key) {
    int value = 0;
    return succeeded("preference_get_int", preference_get_int(key.c_str(), &value)) ? value : 0;
}

template <>
bool TeskConsumerPreferenceProxy::get<bool>(const std::string& key) {
    bool value = true;
    return succeeded("preference_get_boolean", preference_get_boolean(key.c_str(), &value)) ? value : true;
}

template <>
double TeskConsumerPreferenceProxy::get<double>(const std::string& key) {
    double value = 0.0;
    return succeeded("preference_get_double", preference_get_double(key.c_str(), &value)) ? value : 0.0;
}

template <>
std::string TeskConsumerPreferenceProxy::get<std::string>(const std::string& key) {
    char* value = nullptr;
    if (!succeeded("preference_get_string", preference_get_string(key.c_str(), &value))) {
        return "";
    }
    const TeskConsumerText owned(value);
    return owned ? owned.get() : "";
}

bool TeskConsumerPreferenceProxy::exist(const std::string& key) {
    bool existing = false;
    return succeeded("preference_is_existing", preference_is_existing(key.c_str(), &existing)) && existing;
}

int TeskConsumerPreferenceProxy::setPwdEnforcingAccountId(int accountId) {
    if (preference_set_int(TESK_PWD_ENFORCE_ACCOUNT_KEY, accountId) != PREFERENCE_ERROR_NONE) {
        TESK_ERROR("Failed to set enforce account id.");
        return -1;
    }
    return 0;
}

int TeskConsumerPreferenceProxy::getPwdEnforcingAccountId() {
    int accountId = 0;
    if (preference_get_int(TESK_PWD_ENFORCE_ACCOUNT_KEY, &accountId) != PREFERENCE_ERROR_NONE) {
        TESK_ERROR("Failed to get enforce account id. ret : -1");
        return -1;
    }
    return accountId;
}

void TeskConsumerPreferenceProxy::init() {
    const TeskConsumerTrace trace;
    TeskConsumerPreferenceProxy proxy;
    if (!proxy.exist(TESK_PWD_ENFORCE_ACCOUNT_KEY)) {
        proxy.set<int>(TESK_PWD_ENFORCE_ACCOUNT_KEY, 0);
    }
}
