#ifndef DESKWATCH_DEVICE_SETTINGS_H
#define DESKWATCH_DEVICE_SETTINGS_H

#include <array>
#include <optional>

#include "rules/TeskPolicySettings.h"

namespace deskwatch {

/// A setting of the device policy manager that a merged policy decides, by the name under which a watch shows it.
struct DeviceSetting {
    const char* name;
    int (*wanted)(const TeskPolicySettings& settings);
};

/// All of them, in the order in which they are written.
inline constexpr std::array<DeviceSetting, 11> deviceSettings{{
    {"quality", [](const TeskPolicySettings& settings) { return settings.quality; }},
    {"minimum_length", [](const TeskPolicySettings& settings) { return settings.minLength; }},
    {"maximum_failed_attempts_for_wipe", [](const TeskPolicySettings& settings) { return settings.failedAttempts; }},
    {"min_complex_chars", [](const TeskPolicySettings& settings) { return settings.complexCharacters; }},
    {"max_inactivity_time_device_lock", [](const TeskPolicySettings& settings) { return settings.inactivity; }},
    {"expires", [](const TeskPolicySettings& settings) { return settings.expiration; }},
    {"history", [](const TeskPolicySettings& settings) { return settings.history; }},
    {"wifi_state", [](const TeskPolicySettings& settings) { return settings.wifi; }},
    {"messaging_state", [](const TeskPolicySettings& settings) { return settings.messaging; }},
    {"popimap_email_state", [](const TeskPolicySettings& settings) { return settings.popImap; }},
    {"internal_storage_encryption", [](const TeskPolicySettings& settings) { return settings.encryption ? 1 : 0; }},
}};

inline constexpr std::size_t qualitySetting = 0;
inline constexpr std::size_t minLengthSetting = 1;
inline constexpr std::size_t complexCharactersSetting = 3;
inline constexpr std::size_t encryptionSetting = deviceSettings.size() - 1;

/// A value for each of them; none where the watch has no value, or none is written.
using SettingValues = std::array<std::optional<int>, deviceSettings.size()>;

/// What is written for these settings on a device that is encrypted or not.
SettingValues writtenValues(const TeskPolicySettings& settings, bool isEncrypted);

} // namespace deskwatch

#endif
