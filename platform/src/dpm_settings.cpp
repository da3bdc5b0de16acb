#include "dpm_settings.h"

#include "environment.h"
#include "guard.h"
#include "settings_store.h"

namespace host::dpm {

namespace {

const std::string clients = "/dpm/clients/";

} // namespace

// A client may be without a name, a key may not.
std::string clientPath(const std::string& name) {
    const std::string path = clients + (name.empty() ? "without/name" : name);
    const bool isValid = name.find('/') == std::string::npos && SettingsStore::isKey(path);
    return isValid ? path : std::string();
}

void endClient(const std::string& clientPath) {
    SettingsStore& store = SettingsStore::get();
    const bool isLast = store.list(clients).size() == 1;
    SettingsStore::Changes changes = isLast ? store.removalOf("/dpm/password/") : SettingsStore::Changes();
    changes.emplace_back(clientPath, nullptr);
    store.change(changes);
}

bool isAdministrator() {
    return SettingsStore::get().read(clientPath(Environment::get().applicationId())) != nullptr;
}

bool isDaemonThere() noexcept {
    try {
        return SettingsStore::get().isReachable();
    } catch (...) {
        return false;
    }
}

int set(const char* function, device_policy_manager_h handle, const Setting& setting, int value) {
    return set(function, handle, {{setting.path, value}});
}

int set(const char* function, device_policy_manager_h handle,
        const std::vector<std::pair<const char*, int>>& valuesByPath) {
    if (handle == nullptr) {
        return DPM_ERROR_INVALID_PARAMETER;
    }
    return guarded<int>(function, DPM_ERROR_NOT_PERMITTED, [&] {
        if (!isAdministrator()) {
            return DPM_ERROR_NOT_PERMITTED;
        }
        SettingsStore::Changes changes;
        for (const auto& [path, value] : valuesByPath) {
            changes.emplace_back(path, g_variant_new_int32(value));
        }
        SettingsStore::get().change(changes);
        return DPM_ERROR_NONE;
    });
}

int get(const char* function, device_policy_manager_h handle, const Setting& setting, int* value) {
    if (handle == nullptr || value == nullptr) {
        return DPM_ERROR_INVALID_PARAMETER;
    }
    return guarded<int>(function, DPM_ERROR_CONNECTION_REFUSED, [&] {
        *value = SettingsStore::get().readInt(setting.path).value_or(setting.initial);
        return DPM_ERROR_NONE;
    });
}

} // namespace host::dpm
