#include <optional>

#include "dpm/restriction.h"
#include "dpm_settings.h"
#include "guard.h"
#include "settings_store.h"

using host::guarded;
using host::SettingsStore;
using host::dpm::Setting;

namespace {

constexpr int allowed = 1;
constexpr Setting wifiState{"/dpm/restriction/wifi-state", allowed};
constexpr Setting popimapEmailState{"/dpm/restriction/popimap-email-state", allowed};
constexpr char messagingState[] = "/dpm/restriction/messaging-state/";
constexpr char everySim[] = "*";

// Where a SIM's state is kept; empty for an invalid id.
std::string messagingPath(const char* simId) {
    if (simId == nullptr) {
        return {};
    }
    const std::string sim = simId;
    const std::string path = messagingState + sim;
    return sim.find('/') == std::string::npos && SettingsStore::isKey(path) ? path : std::string();
}

} // namespace

int dpm_restriction_set_wifi_state(device_policy_manager_h handle, int allow) {
    return host::dpm::set(__func__, handle, wifiState, host::dpm::truth(allow));
}

int dpm_restriction_get_wifi_state(device_policy_manager_h handle, int* is_allowed) {
    return host::dpm::get(__func__, handle, wifiState, is_allowed);
}

int dpm_restriction_set_popimap_email_state(device_policy_manager_h handle, int allow) {
    return host::dpm::set(__func__, handle, popimapEmailState, host::dpm::truth(allow));
}

int dpm_restriction_get_popimap_email_state(device_policy_manager_h handle, int* is_allowed) {
    return host::dpm::get(__func__, handle, popimapEmailState, is_allowed);
}

int dpm_restriction_set_messaging_state(device_policy_manager_h handle, const char* sim_id, int allow) {
    return guarded<int>(__func__, DPM_ERROR_NOT_PERMITTED, [&]() -> int {
        const std::string path = messagingPath(sim_id);
        if (handle == nullptr || path.empty()) {
            return DPM_ERROR_INVALID_PARAMETER;
        }
        if (!host::dpm::isAdministrator()) {
            return DPM_ERROR_NOT_PERMITTED;
        }
        SettingsStore& store = SettingsStore::get();
        SettingsStore::Changes changes =
            std::string(sim_id) == everySim ? store.removalOf(messagingState) : SettingsStore::Changes();
        changes.emplace_back(path, g_variant_new_int32(host::dpm::truth(allow)));
        store.change(changes);
        return DPM_ERROR_NONE;
    });
}

int dpm_restriction_get_messaging_state(device_policy_manager_h handle, const char* sim_id, int* is_allowed) {
    return guarded<int>(__func__, DPM_ERROR_CONNECTION_REFUSED, [&] {
        const std::string path = messagingPath(sim_id);
        if (handle == nullptr || is_allowed == nullptr || path.empty()) {
            return DPM_ERROR_INVALID_PARAMETER;
        }
        SettingsStore& store = SettingsStore::get();
        const std::optional<int> own = store.readInt(path);
        *is_allowed = own ? *own : store.readInt(messagingPath(everySim)).value_or(allowed);
        return DPM_ERROR_NONE;
    });
}
