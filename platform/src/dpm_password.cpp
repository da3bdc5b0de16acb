#include "dpm/password.h"
#include "dpm_settings.h"

using host::dpm::get;
using host::dpm::set;
using host::dpm::Setting;

namespace {

constexpr Setting quality{"/dpm/password/quality", 0};
constexpr Setting minimumLength{"/dpm/password/minimum-length", 0};
constexpr Setting minComplexChars{"/dpm/password/min-complex-chars", 0};
constexpr Setting maximumFailedAttemptsForWipe{"/dpm/password/maximum-failed-attempts-for-wipe", 0};
constexpr Setting expires{"/dpm/password/expires", 0};
constexpr Setting history{"/dpm/password/history", 0};
constexpr Setting maxInactivityTimeDeviceLock{"/dpm/password/max-inactivity-time-device-lock", 0};

} // namespace

int dpm_password_set_quality(device_policy_manager_h handle, int value) {
    return set(__func__, handle, quality, value);
}

int dpm_password_get_quality(device_policy_manager_h handle, int* value) {
    return get(__func__, handle, quality, value);
}

int dpm_password_set_minimum_length(device_policy_manager_h handle, int value) {
    return set(__func__, handle, minimumLength, value);
}

int dpm_password_get_minimum_length(device_policy_manager_h handle, int* value) {
    return get(__func__, handle, minimumLength, value);
}

int dpm_password_set_min_complex_chars(device_policy_manager_h handle, int value) {
    return set(__func__, handle, minComplexChars, value);
}

int dpm_password_get_min_complex_chars(device_policy_manager_h handle, int* value) {
    return get(__func__, handle, minComplexChars, value);
}

int dpm_password_set_maximum_failed_attempts_for_wipe(device_policy_manager_h handle, int value) {
    return set(__func__, handle, maximumFailedAttemptsForWipe, value);
}

int dpm_password_get_maximum_failed_attempts_for_wipe(device_policy_manager_h handle, int* value) {
    return get(__func__, handle, maximumFailedAttemptsForWipe, value);
}

int dpm_password_set_expires(device_policy_manager_h handle, int value) {
    return set(__func__, handle, expires, value);
}

int dpm_password_get_expires(device_policy_manager_h handle, int* value) {
    return get(__func__, handle, expires, value);
}

int dpm_password_set_history(device_policy_manager_h handle, int value) {
    return set(__func__, handle, history, value);
}

int dpm_password_get_history(device_policy_manager_h handle, int* value) {
    return get(__func__, handle, history, value);
}

int dpm_password_set_max_inactivity_time_device_lock(device_policy_manager_h handle, int value) {
    return set(__func__, handle, maxInactivityTimeDeviceLock, value);
}

int dpm_password_get_max_inactivity_time_device_lock(device_policy_manager_h handle, int* value) {
    return get(__func__, handle, maxInactivityTimeDeviceLock, value);
}
