#ifndef DESKWATCH_DEVICE_SETTINGS_H
#define DESKWATCH_DEVICE_SETTINGS_H

#include <dconf.h>
#include <dpm/device-policy-manager.h>

#include <array>
#include <cstdint>
#include <optional>

#include "rules/TeskPolicyData.h"
#include "rules/TeskPolicySettings.h"

namespace deskwatch {

/// A setting of the device policy manager that a merged policy decides.
struct DeviceSetting {
    using Field = std::int32_t TeskPolicyData::*;

    /// The name under which a watch shows it.
    const char* name;
    /// The value that the watch holds; none when it cannot be read.
    std::optional<int> (*held)(device_policy_manager_h manager, DConfClient* store);
    /// The value that the service writes on a device that is encrypted or not; none when it writes nothing.
    std::optional<int> (*written)(const TeskPolicySettings& settings, bool isEncrypted);
    /// The merged fields that decide it together, up to the first null.
    std::array<Field, 3> fields;

    bool isDecidedBy(Field field) const;
};

/// All of them, in the order in which they are written. Reading, explaining and showing walk this table.
extern const std::array<DeviceSetting, 11> deviceSettings;

/// A value for each of them; none where the watch has no value, or none is written.
using SettingValues = std::array<std::optional<int>, 11>;

} // namespace deskwatch

#endif
