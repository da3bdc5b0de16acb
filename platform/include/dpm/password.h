#ifndef DPM_PASSWORD_H
#define DPM_PASSWORD_H

#include "device-policy-manager.h"

#ifdef __cplusplus
extern "C" {
#endif

/// The rules for the device's password. Every operation returns 0 or a dpm_error_type_e; a setter answers
/// DPM_ERROR_NOT_PERMITTED to a process that may not administer the device, and DPM_ERROR_INVALID_PARAMETER to a
/// negative value.

/// What a password is made of: 0 anything, 32 numeric, 128 alphanumeric; 1 more when simple ones are allowed,
/// which sets the minimum length to 4.
int dpm_password_set_quality(device_policy_manager_h handle, int value);
int dpm_password_get_quality(device_policy_manager_h handle, int* value);

/// Characters.
int dpm_password_set_minimum_length(device_policy_manager_h handle, int value);
int dpm_password_get_minimum_length(device_policy_manager_h handle, int* value);

/// Characters that are not letters.
int dpm_password_set_min_complex_chars(device_policy_manager_h handle, int value);
int dpm_password_get_min_complex_chars(device_policy_manager_h handle, int* value);

/// Wrong attempts before the device wipes itself; a value above 32766 is kept as 0.
int dpm_password_set_maximum_failed_attempts_for_wipe(device_policy_manager_h handle, int value);
int dpm_password_get_maximum_failed_attempts_for_wipe(device_policy_manager_h handle, int* value);

/// Days until a password must be changed; 0: never. A value above 32766 is kept as 0.
int dpm_password_set_expires(device_policy_manager_h handle, int value);
int dpm_password_get_expires(device_policy_manager_h handle, int* value);

/// How many earlier passwords may not come back.
int dpm_password_set_history(device_policy_manager_h handle, int value);
int dpm_password_get_history(device_policy_manager_h handle, int* value);

/// Seconds without use until the device locks; 0: no limit. A value above 32766 is kept as 0.
int dpm_password_set_max_inactivity_time_device_lock(device_policy_manager_h handle, int value);
int dpm_password_get_max_inactivity_time_device_lock(device_policy_manager_h handle, int* value);

#ifdef __cplusplus
}
#endif

#endif
