#include "dpm/administration.h"
#include "dpm_settings.h"
#include "guard.h"
#include "settings_store.h"

using host::guarded;
using host::SettingsStore;

namespace {

// Where a client is kept; empty for an invalid name or user.
std::string clientPath(const char* name, uid_t uid) {
    if (name == nullptr || *name == '\0' || uid == static_cast<uid_t>(-1)) {
        return {};
    }
    const std::string client = name;
    const std::string path = "/dpm/clients/" + client;
    const bool valid = client.find('/') == std::string::npos && SettingsStore::isKey(path);
    return valid ? path : std::string();
}

bool isRegistered(const std::string& path, uid_t uid) {
    const c::VariantOwner user = SettingsStore::get().read(path);
    return user != nullptr && g_variant_is_of_type(user.get(), G_VARIANT_TYPE_UINT32) &&
           g_variant_get_uint32(user.get()) == uid;
}

} // namespace

int dpm_admin_register_client(device_policy_manager_h handle, const char* name, uid_t uid) {
    return guarded<int>(__func__, DPM_ERROR_CONNECTION_REFUSED, [&] {
        const std::string path = clientPath(name, uid);
        if (handle == nullptr || path.empty()) {
            return DPM_ERROR_INVALID_PARAMETER;
        }
        SettingsStore::get().write(path, g_variant_new_uint32(uid));
        return DPM_ERROR_NONE;
    });
}

int dpm_admin_deregister_client(device_policy_manager_h handle, const char* name, uid_t uid) {
    return guarded<int>(__func__, DPM_ERROR_CONNECTION_REFUSED, [&] {
        const std::string path = clientPath(name, uid);
        if (handle == nullptr || path.empty()) {
            return DPM_ERROR_INVALID_PARAMETER;
        }
        if (!isRegistered(path, uid)) {
            return DPM_ERROR_NO_SUCH_FILE;
        }
        SettingsStore::get().remove(path);
        return DPM_ERROR_NONE;
    });
}
