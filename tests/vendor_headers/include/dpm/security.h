#pragma once
#include <dpm/device-policy-manager.h>
#ifdef __cplusplus
extern "C" {
#endif
typedef enum {
    DPM_SECURITY_WIPE_INTERNAL_STORAGE = 1,
    DPM_SECURITY_WIPE_EXTERNAL_STORAGE = 2
} dpm_security_wipe_type_e;
int dpm_security_set_internal_storage_encryption(device_policy_manager_h, int);
int dpm_security_is_internal_storage_encrypted(device_policy_manager_h, int*);
int dpm_security_set_external_storage_encryption(device_policy_manager_h, int);
int dpm_security_is_external_storage_encrypted(device_policy_manager_h, int*);
int dpm_security_wipe_data(device_policy_manager_h, dpm_security_wipe_type_e);
#ifdef __cplusplus
}
#endif
