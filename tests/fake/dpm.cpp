#include <dpm/administration.h>
#include <dpm/device-policy-manager.h>
#include <dpm/password.h>
#include <dpm/restriction.h>
#include <dpm/security.h>

#include "fake_platform.h"

using fake::FakePlatform;

namespace fake {

static std::string messagingOf(const std::string& sim) {
    return "messaging_state " + sim;
}

int DevicePolicy::setting(const std::string& name) const {
    static const std::string restriction = "_state";
    if (const auto stored = settings.find(name); stored != settings.end()) {
        return stored->second;
    }
    const bool allows = name.size() > restriction.size() &&
                        name.compare(name.size() - restriction.size(), std::string::npos, restriction) == 0;
    return allows ? 1 : 0;
}

void DevicePolicy::setMessaging(const std::string& sim, int allow) {
    if (sim == "*") {
        settings.erase(settings.lower_bound(messagingOf("")), settings.upper_bound(messagingOf("~")));
    }
    settings[sim == "*" ? "messaging_state" : messagingOf(sim)] = allow;
}

int DevicePolicy::messaging(const std::string& sim) const {
    const auto single = settings.find(messagingOf(sim));
    return single != settings.end() ? single->second : setting("messaging_state");
}

} // namespace fake

namespace {

bool isOpen(const FakePlatform& platform, device_policy_manager_h handle) {
    return platform.devicePolicy.handles.count(handle) != 0;
}

int administer(const FakePlatform& platform, device_policy_manager_h handle) {
    if (!isOpen(platform, handle)) {
        return DPM_ERROR_INVALID_PARAMETER;
    }
    return platform.devicePolicy.clients.empty() ? DPM_ERROR_PERMISSION_DENIED : DPM_ERROR_NONE;
}

int set(const std::string& group, const std::string& name, device_policy_manager_h handle, int value) {
    auto& platform = FakePlatform::current();
    if (const auto fault = platform.call("dpm_" + group + "_set_" + name, value)) {
        return *fault;
    }
    const int result = administer(platform, handle);
    if (result == DPM_ERROR_NONE) {
        platform.devicePolicy.settings[name] = value;
    }
    return result;
}

int get(const std::string& function, const std::string& name, device_policy_manager_h handle, int* value) {
    auto& platform = FakePlatform::current();
    if (const auto fault = platform.call(function)) {
        return *fault;
    }
    if (!isOpen(platform, handle) || value == nullptr) {
        return DPM_ERROR_INVALID_PARAMETER;
    }
    *value = platform.devicePolicy.setting(name);
    return DPM_ERROR_NONE;
}

int getPassword(const std::string& name, device_policy_manager_h handle, int* value) {
    return get("dpm_password_get_" + name, name, handle, value);
}

} // namespace

device_policy_manager_h dpm_manager_create(void) {
    auto& platform = FakePlatform::current();
    if (platform.call("dpm_manager_create")) {
        return nullptr;
    }
    return *platform.devicePolicy.handles.insert(new __device_policy_manager_s).first;
}

int dpm_manager_destroy(device_policy_manager_h handle) {
    auto& platform = FakePlatform::current();
    if (const auto fault = platform.call("dpm_manager_destroy")) {
        return *fault;
    }
    if (platform.devicePolicy.handles.erase(handle) == 0) {
        return DPM_ERROR_INVALID_PARAMETER;
    }
    delete handle;
    return DPM_ERROR_NONE;
}

int dpm_admin_register_client(device_policy_manager_h handle, const char* name, uid_t uid) {
    auto& platform = FakePlatform::current();
    if (const auto fault = platform.call("dpm_admin_register_client", name, uid)) {
        return *fault;
    }
    if (!isOpen(platform, handle) || name == nullptr || *name == '\0' || uid == static_cast<uid_t>(-1)) {
        return DPM_ERROR_INVALID_PARAMETER;
    }
    platform.devicePolicy.clients.emplace(name, uid);
    return DPM_ERROR_NONE;
}

int dpm_admin_deregister_client(device_policy_manager_h handle, const char* name, uid_t uid) {
    auto& platform = FakePlatform::current();
    if (const auto fault = platform.call("dpm_admin_deregister_client", name, uid)) {
        return *fault;
    }
    if (!isOpen(platform, handle) || name == nullptr) {
        return DPM_ERROR_INVALID_PARAMETER;
    }
    return platform.devicePolicy.clients.erase({name, uid}) != 0 ? DPM_ERROR_NONE : DPM_ERROR_NO_SUCH_FILE;
}

int dpm_password_set_quality(device_policy_manager_h handle, int value) {
    return set("password", "quality", handle, value);
}
int dpm_password_get_quality(device_policy_manager_h handle, int* value) {
    return getPassword("quality", handle, value);
}

int dpm_password_set_minimum_length(device_policy_manager_h handle, int value) {
    return set("password", "minimum_length", handle, value);
}
int dpm_password_get_minimum_length(device_policy_manager_h handle, int* value) {
    return getPassword("minimum_length", handle, value);
}

int dpm_password_set_min_complex_chars(device_policy_manager_h handle, int value) {
    return set("password", "min_complex_chars", handle, value);
}
int dpm_password_get_min_complex_chars(device_policy_manager_h handle, int* value) {
    return getPassword("min_complex_chars", handle, value);
}

int dpm_password_set_maximum_failed_attempts_for_wipe(device_policy_manager_h handle, int value) {
    return set("password", "maximum_failed_attempts_for_wipe", handle, value);
}
int dpm_password_get_maximum_failed_attempts_for_wipe(device_policy_manager_h handle, int* value) {
    return getPassword("maximum_failed_attempts_for_wipe", handle, value);
}

int dpm_password_set_expires(device_policy_manager_h handle, int value) {
    return set("password", "expires", handle, value);
}
int dpm_password_get_expires(device_policy_manager_h handle, int* value) {
    return getPassword("expires", handle, value);
}

int dpm_password_set_history(device_policy_manager_h handle, int value) {
    return set("password", "history", handle, value);
}
int dpm_password_get_history(device_policy_manager_h handle, int* value) {
    return getPassword("history", handle, value);
}

int dpm_password_set_max_inactivity_time_device_lock(device_policy_manager_h handle, int value) {
    return set("password", "max_inactivity_time_device_lock", handle, value);
}
int dpm_password_get_max_inactivity_time_device_lock(device_policy_manager_h handle, int* value) {
    return getPassword("max_inactivity_time_device_lock", handle, value);
}

int dpm_restriction_set_wifi_state(device_policy_manager_h handle, int allow) {
    return set("restriction", "wifi_state", handle, allow);
}
int dpm_restriction_get_wifi_state(device_policy_manager_h handle, int* is_allowed) {
    return get("dpm_restriction_get_wifi_state", "wifi_state", handle, is_allowed);
}

int dpm_restriction_set_popimap_email_state(device_policy_manager_h handle, int allow) {
    return set("restriction", "popimap_email_state", handle, allow);
}
int dpm_restriction_get_popimap_email_state(device_policy_manager_h handle, int* is_allowed) {
    return get("dpm_restriction_get_popimap_email_state", "popimap_email_state", handle, is_allowed);
}

int dpm_restriction_set_messaging_state(device_policy_manager_h handle, const char* sim_id, int allow) {
    auto& platform = FakePlatform::current();
    if (const auto fault = platform.call("dpm_restriction_set_messaging_state", sim_id, allow)) {
        return *fault;
    }
    const int result = sim_id == nullptr ? DPM_ERROR_INVALID_PARAMETER : administer(platform, handle);
    if (result == DPM_ERROR_NONE) {
        platform.devicePolicy.setMessaging(sim_id, allow);
    }
    return result;
}
int dpm_restriction_get_messaging_state(device_policy_manager_h handle, const char* sim_id, int* is_allowed) {
    auto& platform = FakePlatform::current();
    if (const auto fault = platform.call("dpm_restriction_get_messaging_state", sim_id)) {
        return *fault;
    }
    if (!isOpen(platform, handle) || sim_id == nullptr || is_allowed == nullptr) {
        return DPM_ERROR_INVALID_PARAMETER;
    }
    *is_allowed = platform.devicePolicy.messaging(sim_id);
    return DPM_ERROR_NONE;
}

int dpm_security_set_internal_storage_encryption(device_policy_manager_h handle, int encrypt) {
    return set("security", "internal_storage_encryption", handle, encrypt);
}
int dpm_security_is_internal_storage_encrypted(device_policy_manager_h handle, int* is_encrypted) {
    return get("dpm_security_is_internal_storage_encrypted", "internal_storage_encrypted", handle, is_encrypted);
}

int dpm_security_set_external_storage_encryption(device_policy_manager_h handle, int encrypt) {
    return set("security", "external_storage_encryption", handle, encrypt);
}
int dpm_security_is_external_storage_encrypted(device_policy_manager_h handle, int* is_encrypted) {
    return get("dpm_security_is_external_storage_encrypted", "external_storage_encrypted", handle, is_encrypted);
}

int dpm_security_wipe_data(device_policy_manager_h handle, dpm_security_wipe_type_e type) {
    auto& platform = FakePlatform::current();
    if (const auto fault = platform.call("dpm_security_wipe_data", static_cast<int>(type))) {
        return *fault;
    }
    const bool isStorage = type == DPM_SECURITY_WIPE_INTERNAL_STORAGE || type == DPM_SECURITY_WIPE_EXTERNAL_STORAGE;
    const int result = isStorage ? administer(platform, handle) : DPM_ERROR_INVALID_PARAMETER;
    if (result == DPM_ERROR_NONE) {
        platform.devicePolicy.wipes.push_back(type);
    }
    return result;
}
