#include <new>

#include "dpm/device-policy-manager.h"
#include "dpm_settings.h"

device_policy_manager_h dpm_manager_create(void) {
    return new (std::nothrow) __device_policy_manager_s;
}

int dpm_manager_destroy(device_policy_manager_h handle) {
    if (handle == nullptr) {
        return DPM_ERROR_INVALID_PARAMETER;
    }
    delete handle;
    return DPM_ERROR_NONE;
}
