#include "dpm/device-policy-manager.h"
#include "dpm_settings.h"
#include "guard.h"

device_policy_manager_h dpm_manager_create(void) {
    return host::guarded<device_policy_manager_h>(__func__, nullptr, [] { return new __device_policy_manager_s; });
}

int dpm_manager_destroy(device_policy_manager_h handle) {
    if (handle == nullptr) {
        return DPM_ERROR_INVALID_PARAMETER;
    }
    return host::guarded<int>(__func__, DPM_ERROR_NONE, [&] {
        delete handle;
        return DPM_ERROR_NONE;
    });
}
