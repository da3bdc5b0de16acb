#include "dpm/password.h"
#include "dpm_settings.h"

using host::dpm::get;
using host::dpm::set;
using host::dpm::Setting;

namespace {

// The bit of a quality that allows simple passwords, and the minimum length that such a quality brings with it.
constexpr unsigned simpleBit = 1;
constexpr int lengthOfSimple = 4;

// From this value on, some rules keep 0, which is no limit.
constexpr int tooLarge = 32767;

constexpr Setting quality{"/dpm/password/quality", 0};
constexpr Setting minimumLength{"/dpm/password/minimum-length", 0};
constexpr Setting minComplexChars{"/dpm/password/min-complex-chars", 0};
constexpr Setting maximumFailedAttemptsForWipe{"/dpm/password/maximum-failed-attempts-for-wipe", 0};
constexpr Setting expires{"/dpm/password/expires", 0};
constexpr Setting history{"/dpm/password/history", 0};
constexpr Setting maxInactivityTimeDeviceLock{"/dpm/password/max-inactivity-time-device-lock", 0};

int setRule(const char* function, device_policy_manager_h handle, const Setting& rule, int value) {
    return value < 0 ? DPM_ERROR_INVALID_PARAMETER : set(function, handle, rule, value);
}

int setSmallRule(const char* function, device_policy_manager_h handle, const Setting& rule, int value) {
    return setRule(function, handle, rule, value < tooLarge ? value : 0);
}

} // namespace

int dpm_password_set_quality(device_policy_manager_h handle, int value) {
    if (value >= 0 && (static_cast<unsigned>(value) & simpleBit) != 0) {
        return set(__func__, handle, {{quality.path, value}, {minimumLength.path, lengthOfSimple}});
    }
    return setRule(__func__, handle, quality, value);
}

int dpm_password_get_quality(device_policy_manager_h handle, int* value) {
    return get(__func__, handle, quality, value);
}

// Alone among the setters, this one does not tell that the daemon is missing.
int dpm_password_set_minimum_length(device_policy_manager_h handle, int value) {
    const int result = setRule(__func__, handle, minimumLength, value);
    return result == DPM_ERROR_NOT_PERMITTED && !host::dpm::isDaemonThere() ? DPM_ERROR_NONE : result;
}

int dpm_password_get_minimum_length(device_policy_manager_h handle, int* value) {
    return get(__func__, handle, minimumLength, value);
}

int dpm_password_set_min_complex_chars(device_policy_manager_h handle, int value) {
    return setRule(__func__, handle, minComplexChars, value);
}

int dpm_password_get_min_complex_chars(device_policy_manager_h handle, int* value) {
    return get(__func__, handle, minComplexChars, value);
}

int dpm_password_set_maximum_failed_attempts_for_wipe(device_policy_manager_h handle, int value) {
    return setSmallRule(__func__, handle, maximumFailedAttemptsForWipe, value);
}

int dpm_password_get_maximum_failed_attempts_for_wipe(device_policy_manager_h handle, int* value) {
    return get(__func__, handle, maximumFailedAttemptsForWipe, value);
}

int dpm_password_set_expires(device_policy_manager_h handle, int value) {
    return setSmallRule(__func__, handle, expires, value);
}

int dpm_password_get_expires(device_policy_manager_h handle, int* value) {
    return get(__func__, handle, expires, value);
}

int dpm_password_set_history(device_policy_manager_h handle, int value) {
    return setRule(__func__, handle, history, value);
}

int dpm_password_get_history(device_policy_manager_h handle, int* value) {
    return get(__func__, handle, history, value);
}

int dpm_password_set_max_inactivity_time_device_lock(device_policy_manager_h handle, int value) {
    return setSmallRule(__func__, handle, maxInactivityTimeDeviceLock, value);
}

int dpm_password_get_max_inactivity_time_device_lock(device_policy_manager_h handle, int* value) {
    return get(__func__, handle, maxInactivityTimeDeviceLock, value);
}
