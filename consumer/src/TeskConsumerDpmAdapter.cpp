#include "TeskConsumerDpmAdapter.h"

#include <dpm/administration.h>
#include <dpm/password.h>
#include <dpm/restriction.h>
#include <dpm/security.h>

#include "TeskConsumerUtil.h"

namespace {

constexpr char clientName[] = "com.velmor.tesk-agent";
constexpr char ownerName[] = "owner";

uid_t ownerId() {
    return static_cast<uid_t>(TeskConsumerUtil::getUserId(ownerName));
}

} // namespace

TeskConsumerDpmAdapter::TeskConsumerDpmAdapter() : handle(dpm_manager_create()) {}

TeskConsumerDpmAdapter::~TeskConsumerDpmAdapter() {
    dpm_manager_destroy(handle);
}

int TeskConsumerDpmAdapter::registerClient() {
    return dpm_admin_register_client(handle, clientName, ownerId());
}

int TeskConsumerDpmAdapter::deregisterClient() {
    return dpm_admin_deregister_client(handle, clientName, ownerId());
}

int TeskConsumerDpmAdapter::setPasswordQuality(int quality) {
    return dpm_password_set_quality(handle, quality);
}

int TeskConsumerDpmAdapter::getPasswordQuality(int* quality) {
    return dpm_password_get_quality(handle, quality);
}

int TeskConsumerDpmAdapter::setPasswordMinLength(int length) {
    return dpm_password_set_minimum_length(handle, length);
}

int TeskConsumerDpmAdapter::getPasswordMinLength(int* length) {
    return dpm_password_get_minimum_length(handle, length);
}

int TeskConsumerDpmAdapter::setPasswordMaxFailedAttempts(int count) {
    return dpm_password_set_maximum_failed_attempts_for_wipe(handle, count);
}

int TeskConsumerDpmAdapter::getPasswordMaxFailedAttempts(int* count) {
    return dpm_password_get_maximum_failed_attempts_for_wipe(handle, count);
}

int TeskConsumerDpmAdapter::setPasswordMinComplexCharacters(int count) {
    return dpm_password_set_min_complex_chars(handle, count);
}

int TeskConsumerDpmAdapter::getPasswordMinComplexCharacters(int* count) {
    return dpm_password_get_min_complex_chars(handle, count);
}

int TeskConsumerDpmAdapter::setPasswordMaxInactivityTimeDeviceLock(int value) {
    return dpm_password_set_max_inactivity_time_device_lock(handle, value);
}

int TeskConsumerDpmAdapter::getPasswordMaxInactivityTimeDeviceLock(int* value) {
    return dpm_password_get_max_inactivity_time_device_lock(handle, value);
}

int TeskConsumerDpmAdapter::setPasswordExpires(int value) {
    return dpm_password_set_expires(handle, value);
}

int TeskConsumerDpmAdapter::getPasswordExpires(int* value) {
    return dpm_password_get_expires(handle, value);
}

int TeskConsumerDpmAdapter::setPasswordHistory(int value) {
    return dpm_password_set_history(handle, value);
}

int TeskConsumerDpmAdapter::getPasswordHistory(int* value) {
    return dpm_password_get_history(handle, value);
}

int TeskConsumerDpmAdapter::setRestrictionWifi(int allow) {
    return dpm_restriction_set_wifi_state(handle, allow);
}

int TeskConsumerDpmAdapter::getRestrictionWifi(int* allow) {
    return dpm_restriction_get_wifi_state(handle, allow);
}

int TeskConsumerDpmAdapter::setRestrictionMessaging(const char* sim, int allow) {
    return dpm_restriction_set_messaging_state(handle, sim, allow);
}

int TeskConsumerDpmAdapter::getRestrictionMessaging(const char* sim, int* allow) {
    return dpm_restriction_get_messaging_state(handle, sim, allow);
}

int TeskConsumerDpmAdapter::setRestrictionPopImap(int allow) {
    return dpm_restriction_set_popimap_email_state(handle, allow);
}

int TeskConsumerDpmAdapter::getRestrictionPopImap(int* allow) {
    return dpm_restriction_get_popimap_email_state(handle, allow);
}

int TeskConsumerDpmAdapter::setSecurityInternalStorageEncryption(bool encrypt) {
    return dpm_security_set_internal_storage_encryption(handle, static_cast<int>(encrypt));
}

int TeskConsumerDpmAdapter::isSecurityInternalStorageEncrypted(int* state) {
    return dpm_security_is_internal_storage_encrypted(handle, state);
}

int TeskConsumerDpmAdapter::setSecurityExternalStorageEncryption(bool encrypt) {
    return dpm_security_set_external_storage_encryption(handle, static_cast<int>(encrypt));
}

int TeskConsumerDpmAdapter::isSecurityExternalStorageEncrypted(int* state) {
    return dpm_security_is_external_storage_encrypted(handle, state);
}

int TeskConsumerDpmAdapter::wipeInternalStorage() {
    return dpm_security_wipe_data(handle, DPM_SECURITY_WIPE_INTERNAL_STORAGE);
}

int TeskConsumerDpmAdapter::wipeExternalStorage() {
    return dpm_security_wipe_data(handle, DPM_SECURITY_WIPE_EXTERNAL_STORAGE);
}
