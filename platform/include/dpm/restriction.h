#ifndef DPM_RESTRICTION_H
#define DPM_RESTRICTION_H

#include "device-policy-manager.h"

#ifdef __cplusplus
extern "C" {
#endif

/// What the device may do: 1 allowed, 0 forbidden. Every operation returns 0 or a dpm_error_type_e; a setter answers
/// DPM_ERROR_NOT_PERMITTED to a process that may not administer the device.

int dpm_restriction_set_wifi_state(device_policy_manager_h handle, int allow);
int dpm_restriction_get_wifi_state(device_policy_manager_h handle, int* is_allowed);

int dpm_restriction_set_popimap_email_state(device_policy_manager_h handle, int allow);
int dpm_restriction_get_popimap_email_state(device_policy_manager_h handle, int* is_allowed);

/// Text messages of one SIM; the sim_id "*" stands for all of them.
int dpm_restriction_set_messaging_state(device_policy_manager_h handle, const char* sim_id, int allow);
int dpm_restriction_get_messaging_state(device_policy_manager_h handle, const char* sim_id, int* is_allowed);

#ifdef __cplusplus
}
#endif

#endif
