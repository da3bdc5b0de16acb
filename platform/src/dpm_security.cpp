// The demand for encryption is a setting of the device policy manager. Whether a storage is encrypted is a fact about
// the device, which the encryption settings keep in the shared keys "db/ode/crypto_state" and
// "db/ode/external_crypto_state".

#include "dpm/security.h"
#include "dpm_settings.h"
#include "dpm_wipe.h"
#include "environment.h"
#include "guard.h"
#include "settings_store.h"

using host::guarded;

namespace {

constexpr char internalDemand[] = "/dpm/security/internal-storage-encryption";
constexpr char externalDemand[] = "/dpm/security/external-storage-encryption";
constexpr char internalState[] = "/vconf/db/ode/crypto_state";
constexpr char externalState[] = "/vconf/db/ode/external_crypto_state";

int demand(const char* function, device_policy_manager_h handle, const char* setting, int encrypt) {
    if (handle != nullptr && encrypt < 0) {
        return DPM_ERROR_NOT_PERMITTED;
    }
    return host::dpm::set(function, handle, {{setting, host::dpm::truth(encrypt)}});
}

int isEncrypted(const char* function, device_policy_manager_h handle, const char* stateKey, int* encrypted) {
    if (handle == nullptr || encrypted == nullptr) {
        return DPM_ERROR_INVALID_PARAMETER;
    }
    return guarded<int>(function, DPM_ERROR_CONNECTION_REFUSED, [&] {
        *encrypted = host::SettingsStore::get().readText(stateKey) == "encrypted" ? 1 : 0;
        return DPM_ERROR_NONE;
    });
}

} // namespace

int dpm_security_set_internal_storage_encryption(device_policy_manager_h handle, int encrypt) {
    return demand(__func__, handle, internalDemand, encrypt);
}

int dpm_security_is_internal_storage_encrypted(device_policy_manager_h handle, int* is_encrypted) {
    return isEncrypted(__func__, handle, internalState, is_encrypted);
}

int dpm_security_set_external_storage_encryption(device_policy_manager_h handle, int encrypt) {
    return demand(__func__, handle, externalDemand, encrypt);
}

int dpm_security_is_external_storage_encrypted(device_policy_manager_h handle, int* is_encrypted) {
    return isEncrypted(__func__, handle, externalState, is_encrypted);
}

int dpm_security_wipe_data(device_policy_manager_h handle, dpm_security_wipe_type_e type) {
    constexpr unsigned internal = DPM_SECURITY_WIPE_INTERNAL_STORAGE;
    constexpr unsigned external = DPM_SECURITY_WIPE_EXTERNAL_STORAGE;
    const auto wanted = static_cast<unsigned>(type);
    if (handle == nullptr || (wanted & (internal | external)) == 0) {
        return DPM_ERROR_INVALID_PARAMETER;
    }
    return guarded<int>(__func__, DPM_ERROR_NOT_PERMITTED, [&] {
        const auto& device = host::Environment::get().device();
        if ((wanted & internal) != 0) {
            host::dpm::wipeStorage(device, "internal");
        }
        if ((wanted & external) != 0) {
            host::dpm::wipeStorage(device, "external");
        }
        return DPM_ERROR_NONE;
    });
}
