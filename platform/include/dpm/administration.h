#ifndef DPM_ADMINISTRATION_H
#define DPM_ADMINISTRATION_H

#include <sys/types.h>

#include "device-policy-manager.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Makes an application of a user, which is not root, an administrator of the device; it may then call the setters. A
/// repeated registration answers DPM_ERROR_NOT_PERMITTED. Returns 0 or a dpm_error_type_e.
int dpm_admin_register_client(device_policy_manager_h handle, const char* name, uid_t uid);

/// Takes the administration back: the rules for the password go, restrictions stay. An unknown administrator answers
/// DPM_ERROR_NOT_PERMITTED. Returns 0 or a dpm_error_type_e.
int dpm_admin_deregister_client(device_policy_manager_h handle, const char* name, uid_t uid);

#ifdef __cplusplus
}
#endif

#endif
