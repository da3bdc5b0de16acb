#pragma once
#include <dpm/device-policy-manager.h>
#ifdef __cplusplus
extern "C" {
#endif
int dpm_restriction_set_wifi_state(device_policy_manager_h, int);
int dpm_restriction_get_wifi_state(device_policy_manager_h, int*);
int dpm_restriction_set_popimap_email_state(device_policy_manager_h, int);
int dpm_restriction_get_popimap_email_state(device_policy_manager_h, int*);
int dpm_restriction_set_messaging_state(device_policy_manager_h, const char*, int);
int dpm_restriction_get_messaging_state(device_policy_manager_h, const char*, int*);
#ifdef __cplusplus
}
#endif
