#ifndef PLATFORM_DPM_SETTINGS_H
#define PLATFORM_DPM_SETTINGS_H

#include <string>
#include <utility>
#include <vector>

#include "dpm/device-policy-manager.h"

/// What a handle of the device policy manager points at. All state is the device's, so there is nothing to hold.
struct __device_policy_manager_s {};

/// The device policy manager keeps its settings as integers below /dpm/ in the settings store, and its clients, with
/// their user ids, below /dpm/clients/.
namespace host::dpm {

/// Where a client is kept; empty for what cannot be a client's name.
std::string clientPath(const std::string& name);

/// Takes a client's administration back. The rules for the password go with the last client; restrictions stay.
void endClient(const std::string& clientPath);

/// Whether this process may administer the device: a client has the name of its application.
bool isAdministrator();

/// Whether the daemon of the device policy manager is there, which is the writer of the store.
bool isDaemonThere() noexcept;

/// How the store keeps a yes or no: 1 or 0.
inline int truth(int value) {
    return value != 0 ? 1 : 0;
}

/// Where the store keeps a setting, and its value until it is set.
struct Setting {
    const char* path;
    int initial;
};

/// A setter: writes an integer, or refuses a null handle or a process that may not administer the device.
int set(const char* function, device_policy_manager_h handle, const Setting& setting, int value);

/// The same for several settings that change in one step.
int set(const char* function, device_policy_manager_h handle,
        const std::vector<std::pair<const char*, int>>& valuesByPath);

/// A getter: reads an integer, or refuses a null argument.
int get(const char* function, device_policy_manager_h handle, const Setting& setting, int* value);

} // namespace host::dpm

#endif
