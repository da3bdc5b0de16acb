#include <dpm/administration.h>
#include <dpm/device-policy-manager.h>
#include <dpm/password.h>
#include <dpm/restriction.h>
#include <dpm/security.h>

#include <algorithm>
#include <optional>

#include "fake_platform.h"

using fake::answer;
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

bool DevicePolicy::isClient(const std::string& name) const {
    return std::any_of(clients.begin(), clients.end(), [&](const auto& client) { return client.first == name; });
}

bool DevicePolicy::endClient(const std::string& name, uid_t uid) {
    const bool wasClient = clients.erase({name, uid}) != 0;
    if (wasClient && clients.empty()) {
        for (const char* rule : {"quality", "minimum_length", "min_complex_chars", "maximum_failed_attempts_for_wipe",
                                 "expires", "history", "max_inactivity_time_device_lock"}) {
            settings.erase(rule);
        }
    }
    return wasClient;
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

bool isOpen(device_policy_manager_h handle) {
    return FakePlatform::current().devicePolicy.handles.count(handle) != 0;
}

constexpr int lengthOfSimplePasswords = 4;

/// Does what only an administrator may do.
template <typename Act>
int administer(device_policy_manager_h handle, const Act& act) {
    if (!isOpen(handle)) {
        return DPM_ERROR_INVALID_PARAMETER;
    }
    auto& policy = FakePlatform::current().devicePolicy;
    if (!policy.hasDaemon || !policy.isClient(FakePlatform::current().appId)) {
        return DPM_ERROR_NOT_PERMITTED;
    }
    act(policy);
    return DPM_ERROR_NONE;
}

/// What a setting keeps of a value; none when it is refused with `refusal`.
struct Kept {
    std::optional<int> value;
    int refusal = DPM_ERROR_INVALID_PARAMETER;
};

Kept keptOf(const std::string& group, const std::string& name, int value) {
    if (group != "password") {
        const bool isRefused = group == "security" && value < 0;
        return {isRefused ? std::nullopt : std::optional(value != 0 ? 1 : 0), DPM_ERROR_NOT_PERMITTED};
    }
    constexpr int tooLarge = 32767;
    const bool isSmall =
        name == "maximum_failed_attempts_for_wipe" || name == "expires" || name == "max_inactivity_time_device_lock";
    return {value < 0 ? std::nullopt : std::optional(isSmall && value >= tooLarge ? 0 : value)};
}

int set(const std::string& group, const std::string& name, device_policy_manager_h handle, int value) {
    return answer({"dpm_" + group + "_set_" + name, value}, {}, [&] {
        const Kept kept = keptOf(group, name, value);
        if (isOpen(handle) && !kept.value) {
            return kept.refusal;
        }
        if (isOpen(handle) && name == "minimum_length" && !FakePlatform::current().devicePolicy.hasDaemon) {
            return static_cast<int>(DPM_ERROR_NONE); // the one setter that does not tell
        }
        return administer(handle, [&](fake::DevicePolicy& policy) {
            policy.settings[name] = *kept.value;
            if (name == "quality" && value % 2 == 1) {
                policy.settings["minimum_length"] = lengthOfSimplePasswords;
            }
        });
    });
}

int get(const std::string& function, const std::string& name, device_policy_manager_h handle, int* value) {
    return answer({function}, {value}, [&]() -> int {
        if (!isOpen(handle)) {
            return DPM_ERROR_INVALID_PARAMETER;
        }
        *value = FakePlatform::current().devicePolicy.setting(name);
        return DPM_ERROR_NONE;
    });
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
    return answer({"dpm_manager_destroy"}, {}, [&]() -> int {
        if (FakePlatform::current().devicePolicy.handles.erase(handle) == 0) {
            return DPM_ERROR_INVALID_PARAMETER;
        }
        delete handle;
        return DPM_ERROR_NONE;
    });
}

int dpm_admin_register_client(device_policy_manager_h handle, const char* name, uid_t uid) {
    return answer({"dpm_admin_register_client", name, uid}, {name}, [&]() -> int {
        if (!isOpen(handle) || uid == 0 || uid == static_cast<uid_t>(-1)) {
            return DPM_ERROR_INVALID_PARAMETER;
        }
        auto& policy = FakePlatform::current().devicePolicy;
        if (!policy.hasDaemon || policy.isClient(name)) {
            return DPM_ERROR_NOT_PERMITTED;
        }
        policy.clients.emplace(name, uid);
        return DPM_ERROR_NONE;
    });
}

int dpm_admin_deregister_client(device_policy_manager_h handle, const char* name, uid_t uid) {
    return answer({"dpm_admin_deregister_client", name, uid}, {name}, [&]() -> int {
        if (!isOpen(handle)) {
            return DPM_ERROR_INVALID_PARAMETER;
        }
        return FakePlatform::current().devicePolicy.endClient(name, uid) ? DPM_ERROR_NONE : DPM_ERROR_NOT_PERMITTED;
    });
}

// The functions of the rules that are one number each; their parameters are named as in the platform's headers.
// NOLINTBEGIN(bugprone-macro-parentheses): the name of a parameter takes none
#define FAKE_SETTER(group, name, value)                                                                                \
    int dpm_##group##_set_##name(device_policy_manager_h handle, int value) {                                          \
        return set(#group, #name, handle, value);                                                                      \
    }
#define FAKE_GETTER(group, name, value)                                                                                \
    int dpm_##group##_get_##name(device_policy_manager_h handle, int* value) {                                         \
        return get("dpm_" #group "_get_" #name, #name, handle, value);                                                 \
    }
// NOLINTEND(bugprone-macro-parentheses)

FAKE_SETTER(password, quality, value)
FAKE_GETTER(password, quality, value)
FAKE_SETTER(password, minimum_length, value)
FAKE_GETTER(password, minimum_length, value)
FAKE_SETTER(password, min_complex_chars, value)
FAKE_GETTER(password, min_complex_chars, value)
FAKE_SETTER(password, maximum_failed_attempts_for_wipe, value)
FAKE_GETTER(password, maximum_failed_attempts_for_wipe, value)
FAKE_SETTER(password, expires, value)
FAKE_GETTER(password, expires, value)
FAKE_SETTER(password, history, value)
FAKE_GETTER(password, history, value)
FAKE_SETTER(password, max_inactivity_time_device_lock, value)
FAKE_GETTER(password, max_inactivity_time_device_lock, value)
FAKE_SETTER(restriction, wifi_state, allow)
FAKE_GETTER(restriction, wifi_state, is_allowed)
FAKE_SETTER(restriction, popimap_email_state, allow)
FAKE_GETTER(restriction, popimap_email_state, is_allowed)
FAKE_SETTER(security, internal_storage_encryption, encrypt)
FAKE_SETTER(security, external_storage_encryption, encrypt)

int dpm_restriction_set_messaging_state(device_policy_manager_h handle, const char* sim_id, int allow) {
    return answer({"dpm_restriction_set_messaging_state", sim_id, allow}, {sim_id}, [&] {
        return administer(handle, [&](fake::DevicePolicy& policy) { policy.setMessaging(sim_id, allow != 0 ? 1 : 0); });
    });
}

int dpm_restriction_get_messaging_state(device_policy_manager_h handle, const char* sim_id, int* is_allowed) {
    return answer({"dpm_restriction_get_messaging_state", sim_id}, {sim_id, is_allowed}, [&]() -> int {
        if (!isOpen(handle)) {
            return DPM_ERROR_INVALID_PARAMETER;
        }
        *is_allowed = FakePlatform::current().devicePolicy.messaging(sim_id);
        return DPM_ERROR_NONE;
    });
}

int dpm_security_is_internal_storage_encrypted(device_policy_manager_h handle, int* is_encrypted) {
    return get("dpm_security_is_internal_storage_encrypted", "internal_storage_encrypted", handle, is_encrypted);
}

int dpm_security_is_external_storage_encrypted(device_policy_manager_h handle, int* is_encrypted) {
    return get("dpm_security_is_external_storage_encrypted", "external_storage_encrypted", handle, is_encrypted);
}

int dpm_security_wipe_data(device_policy_manager_h handle, dpm_security_wipe_type_e type) {
    return answer({"dpm_security_wipe_data", static_cast<int>(type)}, {}, [&]() -> int {
        constexpr unsigned storages = DPM_SECURITY_WIPE_INTERNAL_STORAGE | DPM_SECURITY_WIPE_EXTERNAL_STORAGE;
        if (!isOpen(handle) || (static_cast<unsigned>(type) & storages) == 0) {
            return DPM_ERROR_INVALID_PARAMETER;
        }
        FakePlatform::current().devicePolicy.wipes.push_back(type);
        return DPM_ERROR_NONE;
    });
}
