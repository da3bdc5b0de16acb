#pragma once
#include <dpm/device-policy-manager.h>
#include <sys/types.h>
#ifdef __cplusplus
extern "C" {
#endif
int dpm_admin_register_client(device_policy_manager_h, const char*, uid_t);
int dpm_admin_deregister_client(device_policy_manager_h, const char*, uid_t);
#ifdef __cplusplus
}
#endif
