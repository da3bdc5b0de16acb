#pragma once
#ifdef __cplusplus
extern "C" {
#endif
typedef enum {
    DPM_ERROR_NONE,
    DPM_ERROR_INVALID_PARAMETER = -22,
    DPM_ERROR_CONNECTION_REFUSED = -111,
    DPM_ERROR_TIMED_OUT = -1073741823,
    DPM_ERROR_PERMISSION_DENIED = -13,
    DPM_ERROR_NOT_PERMITTED = -1,
    DPM_ERROR_NO_DATA = -61,
    DPM_ERROR_FILE_EXISTS = -17,
    DPM_ERROR_OUT_OF_MEMORY = -12
} dpm_error_type_e;
typedef struct __device_policy_manager_s* device_policy_manager_h;
device_policy_manager_h dpm_manager_create(void);
int dpm_manager_destroy(device_policy_manager_h);
#ifdef __cplusplus
}
#endif
