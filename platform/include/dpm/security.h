#ifndef DPM_SECURITY_H
#define DPM_SECURITY_H

#include "device-policy-manager.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef enum {
    DPM_SECURITY_WIPE_INTERNAL_STORAGE = (1 << 0),
    DPM_SECURITY_WIPE_EXTERNAL_STORAGE = (1 << 1)
} dpm_security_wipe_type_e;

/// Every operation returns 0 or a dpm_error_type_e; a setter answers DPM_ERROR_NOT_PERMITTED to a process that may not
/// administer the device.

/// Demands, or no longer demands, that the storage is encrypted.
int dpm_security_set_internal_storage_encryption(device_policy_manager_h handle, int encrypt);

/// Whether the storage is encrypted now: 1 or 0.
int dpm_security_is_internal_storage_encrypted(device_policy_manager_h handle, int* is_encrypted);

int dpm_security_set_external_storage_encryption(device_policy_manager_h handle, int encrypt);
int dpm_security_is_external_storage_encrypted(device_policy_manager_h handle, int* is_encrypted);

/// Erases a storage at once, whoever asks.
int dpm_security_wipe_data(device_policy_manager_h handle, dpm_security_wipe_type_e type);

#ifdef __cplusplus
}
#endif

#endif
