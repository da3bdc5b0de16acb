#pragma once
#include <dpm/device-policy-manager.h>
#ifdef __cplusplus
extern "C" {
#endif
int dpm_password_set_quality(device_policy_manager_h, int);
int dpm_password_get_quality(device_policy_manager_h, int*);
int dpm_password_set_minimum_length(device_policy_manager_h, int);
int dpm_password_get_minimum_length(device_policy_manager_h, int*);
int dpm_password_set_min_complex_chars(device_policy_manager_h, int);
int dpm_password_get_min_complex_chars(device_policy_manager_h, int*);
int dpm_password_set_maximum_failed_attempts_for_wipe(device_policy_manager_h, int);
int dpm_password_get_maximum_failed_attempts_for_wipe(device_policy_manager_h, int*);
int dpm_password_set_expires(device_policy_manager_h, int);
int dpm_password_get_expires(device_policy_manager_h, int*);
int dpm_password_set_history(device_policy_manager_h, int);
int dpm_password_get_history(device_policy_manager_h, int*);
int dpm_password_set_max_inactivity_time_device_lock(device_policy_manager_h, int);
int dpm_password_get_max_inactivity_time_device_lock(device_policy_manager_h, int*);
#ifdef __cplusplus
}
#endif
