#include "session/device_policy.h"

#include <dpm/device-policy-manager.h>
#include <dpm/password.h>
#include <dpm/restriction.h>

#include <array>
#include <stdexcept>
#include <type_traits>

#include "c_owners.h"
#include "session/setting_value.h"

namespace deskwatch {
namespace {

using ManagerOwner = c::Owner<std::remove_pointer_t<device_policy_manager_h>, dpm_manager_destroy>;

int messagingOfAllSims(device_policy_manager_h manager, int* isAllowed) {
    return dpm_restriction_get_messaging_state(manager, "*", isAllowed);
}

struct Setting {
    const char* name;
    int (*read)(device_policy_manager_h manager, int* value);
};

constexpr std::array<Setting, 10> storedSettings{{
    {"quality", dpm_password_get_quality},
    {"minimum_length", dpm_password_get_minimum_length},
    {"maximum_failed_attempts_for_wipe", dpm_password_get_maximum_failed_attempts_for_wipe},
    {"min_complex_chars", dpm_password_get_min_complex_chars},
    {"max_inactivity_time_device_lock", dpm_password_get_max_inactivity_time_device_lock},
    {"expires", dpm_password_get_expires},
    {"history", dpm_password_get_history},
    {"wifi_state", dpm_restriction_get_wifi_state},
    {"messaging_state", messagingOfAllSims},
    {"popimap_email_state", dpm_restriction_get_popimap_email_state},
}};

ManagerOwner newManager() {
    ManagerOwner manager(dpm_manager_create());
    if (manager == nullptr) {
        throw std::runtime_error("cannot reach the device policy manager");
    }
    return manager;
}

} // namespace

std::vector<NamedValue> readDevicePolicy(DConfClient* store) {
    const ManagerOwner manager = newManager();
    std::vector<NamedValue> values;
    for (const auto& setting : storedSettings) {
        int value = 0;
        const bool isRead = setting.read(manager.get(), &value) == DPM_ERROR_NONE;
        values.push_back({setting.name, isRead ? Value(value) : Value()});
    }
    // What was demanded has no getter; whether the storage is encrypted is another matter, see db/ode/crypto_state.
    values.push_back({"internal_storage_encryption", readSetting(store, "/dpm/security/internal-storage-encryption")});
    return values;
}

LockDemand readLockDemand() {
    const ManagerOwner manager = newManager();
    LockDemand demand;
    if (dpm_password_get_quality(manager.get(), &demand.quality) != DPM_ERROR_NONE ||
        dpm_password_get_minimum_length(manager.get(), &demand.minimumLength) != DPM_ERROR_NONE) {
        throw std::runtime_error("the device policy manager does not tell what it demands of a lock");
    }
    return demand;
}

} // namespace deskwatch
