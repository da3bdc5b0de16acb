#include "session/device_settings.h"

#include <dpm/password.h>
#include <dpm/restriction.h>

#include <algorithm>

#include "session/setting_value.h"

namespace deskwatch {
namespace {

using Data = TeskPolicyData;
using Settings = TeskPolicySettings;

template <int (*read)(device_policy_manager_h manager, int* value)>
std::optional<int> held(device_policy_manager_h manager, DConfClient* /*store*/) {
    int value = 0;
    return read(manager, &value) == DPM_ERROR_NONE ? std::optional(value) : std::nullopt;
}

int messagingOfAllSims(device_policy_manager_h manager, int* isAllowed) {
    return dpm_restriction_get_messaging_state(manager, "*", isAllowed);
}

/// What was demanded has no getter. Whether the storage is encrypted is another matter: see db/ode/crypto_state.
std::optional<int> heldEncryption(device_policy_manager_h /*manager*/, DConfClient* store) {
    const Value value = readSetting(store, "/dpm/security/internal-storage-encryption");
    const int* number = std::get_if<int>(&value);
    return number != nullptr ? std::optional(*number) : std::nullopt;
}

template <int Settings::*member>
std::optional<int> written(const Settings& settings, bool /*isEncrypted*/) {
    return settings.*member;
}

std::optional<int> writtenEncryption(const Settings& settings, bool isEncrypted) {
    return settings.needsEncryptionWrite(isEncrypted) ? std::optional(settings.encryption ? 1 : 0) : std::nullopt;
}

} // namespace

const std::array<DeviceSetting, 11> deviceSettings{{
    {"quality",
     held<dpm_password_get_quality>,
     written<&Settings::quality>,
     {&Data::devicePasswordEnabled, &Data::allowSimplePassword, &Data::alphanumericDevicePasswordRequired}},
    {"minimum_length",
     held<dpm_password_get_minimum_length>,
     written<&Settings::minLength>,
     {&Data::minDevicePasswordLength}},
    {"maximum_failed_attempts_for_wipe",
     held<dpm_password_get_maximum_failed_attempts_for_wipe>,
     written<&Settings::failedAttempts>,
     {&Data::maxDevicePasswordFailedAttempts}},
    {"min_complex_chars",
     held<dpm_password_get_min_complex_chars>,
     written<&Settings::complexCharacters>,
     {&Data::minDevicePasswordComplexCharacters}},
    {"max_inactivity_time_device_lock",
     held<dpm_password_get_max_inactivity_time_device_lock>,
     written<&Settings::inactivity>,
     {&Data::maxInactivityTimeDeviceLock}},
    {"expires", held<dpm_password_get_expires>, written<&Settings::expiration>, {&Data::devicePasswordExpiration}},
    {"history", held<dpm_password_get_history>, written<&Settings::history>, {&Data::devicePasswordHistory}},
    {"wifi_state", held<dpm_restriction_get_wifi_state>, written<&Settings::wifi>, {&Data::allowWifi}},
    {"messaging_state", held<messagingOfAllSims>, written<&Settings::messaging>, {&Data::allowTextMessaging}},
    {"popimap_email_state",
     held<dpm_restriction_get_popimap_email_state>,
     written<&Settings::popImap>,
     {&Data::allowPopimapEmail}},
    {"internal_storage_encryption", heldEncryption, writtenEncryption, {&Data::requireDeviceEncryption}},
}};

bool DeviceSetting::isDecidedBy(Field field) const {
    return std::find(fields.begin(), fields.end(), field) != fields.end();
}

} // namespace deskwatch
