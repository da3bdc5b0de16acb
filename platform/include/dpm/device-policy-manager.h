#ifndef DPM_DEVICE_POLICY_MANAGER_H
#define DPM_DEVICE_POLICY_MANAGER_H

#ifdef __cplusplus
extern "C" {
#endif

typedef enum {
    DPM_ERROR_NONE = 0,
    DPM_ERROR_INVALID_PARAMETER = -22,
    DPM_ERROR_CONNECTION_REFUSED = -111,
    DPM_ERROR_TIMED_OUT = -1073741823,
    DPM_ERROR_PERMISSION_DENIED = -13,
    DPM_ERROR_NOT_PERMITTED = -1,
    DPM_ERROR_NO_DATA = -61,
    DPM_ERROR_FILE_EXISTS = -17,
    DPM_ERROR_OUT_OF_MEMORY = -12
} dpm_error_type_e;

/// A connection to the device policy manager. Every call answers DPM_ERROR_INVALID_PARAMETER to a null handle.
typedef struct __device_policy_manager_s* device_policy_manager_h;

/// A new handle, or null. The caller releases it with dpm_manager_destroy().
device_policy_manager_h dpm_manager_create(void);

/// Releases a handle. Returns 0 or a dpm_error_type_e.
int dpm_manager_destroy(device_policy_manager_h handle);

#ifdef __cplusplus
}
#endif

#endif
