#include "dpm/password.h"
#include "dpm_settings.h"

using host::dpm::get;
using host::dpm::set;

namespace {

constexpr int neverSet = 0;

constexpr char quality[] = "/dpm/password/quality";
constexpr char minimumLength[] = "/dpm/password/minimum-length";
constexpr char minComplexChars[] = "/dpm/password/min-complex-chars";
constexpr char maximumFailedAttemptsForWipe[] = "/dpm/password/maximum-failed-attempts-for-wipe";
constexpr char expires[] = "/dpm/password/expires";
constexpr char history[] = "/dpm/password/history";
constexpr char maxInactivityTimeDeviceLock[] = "/dpm/password/max-inactivity-time-device-lock";

} // namespace

int dpm_password_set_quality(device_policy_manager_h handle, int value) {
    return set("dpm_password_set_quality", handle, quality, value);
}

int dpm_password_get_quality(device_policy_manager_h handle, int* value) {
    return get("dpm_password_get_quality", handle, quality, neverSet, value);
}

int dpm_password_set_minimum_length(device_policy_manager_h handle, int value) {
    return set("dpm_password_set_minimum_length", handle, minimumLength, value);
}

int dpm_password_get_minimum_length(device_policy_manager_h handle, int* value) {
    return get("dpm_password_get_minimum_length", handle, minimumLength, neverSet, value);
}

int dpm_password_set_min_complex_chars(device_policy_manager_h handle, int value) {
    return set("dpm_password_set_min_complex_chars", handle, minComplexChars, value);
}

int dpm_password_get_min_complex_chars(device_policy_manager_h handle, int* value) {
    return get("dpm_password_get_min_complex_chars", handle, minComplexChars, neverSet, value);
}

int dpm_password_set_maximum_failed_attempts_for_wipe(device_policy_manager_h handle, int value) {
    return set("dpm_password_set_maximum_failed_attempts_for_wipe", handle, maximumFailedAttemptsForWipe, value);
}

int dpm_password_get_maximum_failed_attempts_for_wipe(device_policy_manager_h handle, int* value) {
    return get("dpm_password_get_maximum_failed_attempts_for_wipe", handle, maximumFailedAttemptsForWipe, neverSet,
               value);
}

int dpm_password_set_expires(device_policy_manager_h handle, int value) {
    return set("dpm_password_set_expires", handle, expires, value);
}

int dpm_password_get_expires(device_policy_manager_h handle, int* value) {
    return get("dpm_password_get_expires", handle, expires, neverSet, value);
}

int dpm_password_set_history(device_policy_manager_h handle, int value) {
    return set("dpm_password_set_history", handle, history, value);
}

int dpm_password_get_history(device_policy_manager_h handle, int* value) {
    return get("dpm_password_get_history", handle, history, neverSet, value);
}

int dpm_password_set_max_inactivity_time_device_lock(device_policy_manager_h handle, int value) {
    return set("dpm_password_set_max_inactivity_time_device_lock", handle, maxInactivityTimeDeviceLock, value);
}

int dpm_password_get_max_inactivity_time_device_lock(device_policy_manager_h handle, int* value) {
    return get("dpm_password_get_max_inactivity_time_device_lock", handle, maxInactivityTimeDeviceLock, neverSet,
               value);
}
