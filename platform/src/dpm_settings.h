#ifndef PLATFORM_DPM_SETTINGS_H
#define PLATFORM_DPM_SETTINGS_H

#include <string>

#include "dpm/device-policy-manager.h"

/// What a handle of the device policy manager points at. All state is the device's, so there is nothing to hold.
struct __device_policy_manager_s {};

/// The device policy manager keeps its settings as integers below /dpm/ in the settings store, and its clients, with
/// their user ids, below /dpm/clients/.
namespace host::dpm {

/// Whether any client may administer the device.
bool isAdministered();

/// How the store keeps a yes or no: 1 or 0.
inline int truth(int value) {
    return value != 0 ? 1 : 0;
}

/// A setter: writes an integer, or answers the null handle or the missing client.
int set(const char* function, device_policy_manager_h handle, const std::string& key, int value);

/// A getter: reads an integer, `missing` when it was never set, or answers the null argument.
int get(const char* function, device_policy_manager_h handle, const std::string& key, int missing, int* value);

} // namespace host::dpm

#endif
