#include "dpm_settings.h"

#include "guard.h"
#include "settings_store.h"

namespace host::dpm {

bool isAdministered() {
    return !SettingsStore::get().isEmptyFolder("/dpm/clients/");
}

int set(const char* function, device_policy_manager_h handle, const Setting& setting, int value) {
    if (handle == nullptr) {
        return DPM_ERROR_INVALID_PARAMETER;
    }
    return guarded<int>(function, DPM_ERROR_CONNECTION_REFUSED, [&] {
        if (!isAdministered()) {
            return DPM_ERROR_PERMISSION_DENIED;
        }
        SettingsStore::get().write(setting.path, g_variant_new_int32(value));
        return DPM_ERROR_NONE;
    });
}

int get(const char* function, device_policy_manager_h handle, const Setting& setting, int* value) {
    if (handle == nullptr || value == nullptr) {
        return DPM_ERROR_INVALID_PARAMETER;
    }
    return guarded<int>(function, DPM_ERROR_CONNECTION_REFUSED, [&] {
        *value = SettingsStore::get().readInt(setting.path).value_or(setting.initial);
        return DPM_ERROR_NONE;
    });
}

} // namespace host::dpm
