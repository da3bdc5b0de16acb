#include "session/device_policy.h"

#include <dpm/device-policy-manager.h>
#include <dpm/password.h>
#include <dpm/security.h>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <type_traits>

namespace deskwatch {
namespace {

struct ManagerRelease {
    void operator()(device_policy_manager_h manager) const { dpm_manager_destroy(manager); }
};

using ManagerOwner = std::unique_ptr<std::remove_pointer_t<device_policy_manager_h>, ManagerRelease>;

ManagerOwner newManager() {
    ManagerOwner manager(dpm_manager_create());
    if (manager == nullptr) {
        throw std::runtime_error("cannot reach the device policy manager");
    }
    return manager;
}

} // namespace

SettingValues readDevicePolicy(DConfClient* store) {
    const ManagerOwner manager = newManager();
    SettingValues values;
    std::transform(deviceSettings.begin(), deviceSettings.end(), values.begin(),
                   [&](const DeviceSetting& setting) { return setting.held(manager.get(), store); });
    return values;
}

LockDemand readLockDemand() {
    const ManagerOwner manager = newManager();
    LockDemand demand;
    if (dpm_password_get_quality(manager.get(), &demand.quality) != DPM_ERROR_NONE ||
        dpm_password_get_minimum_length(manager.get(), &demand.minimumLength) != DPM_ERROR_NONE) {
        throw std::runtime_error("cannot read what the device policy manager requires of a lock");
    }
    return demand;
}

int wipeInternalStorage() {
    return dpm_security_wipe_data(newManager().get(), DPM_SECURITY_WIPE_INTERNAL_STORAGE);
}

} // namespace deskwatch
