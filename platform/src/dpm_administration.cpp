#include "dpm/administration.h"
#include "dpm_settings.h"
#include "guard.h"
#include "settings_store.h"

using host::guarded;
using host::SettingsStore;

namespace {

constexpr uid_t root = 0;
constexpr auto nobody = static_cast<uid_t>(-1);

bool isClient(const std::string& path, uid_t uid) {
    const c::VariantOwner user = SettingsStore::get().read(path);
    const c::VariantOwner wanted(g_variant_ref_sink(g_variant_new_uint32(uid)));
    return user != nullptr && g_variant_equal(user.get(), wanted.get()) != FALSE; // a value of another type differs
}

// Runs a function's body with the path of a client. A name or a user that cannot be one is refused.
template <class Body>
int withClient(const char* function, device_policy_manager_h handle, const char* name, uid_t uid, Body&& body) {
    return guarded<int>(function, DPM_ERROR_NOT_PERMITTED, [&]() -> int {
        const std::string path = name != nullptr ? host::dpm::clientPath(name) : std::string();
        if (handle == nullptr || path.empty() || uid == root || uid == nobody) {
            return DPM_ERROR_INVALID_PARAMETER;
        }
        return body(path);
    });
}

} // namespace

int dpm_admin_register_client(device_policy_manager_h handle, const char* name, uid_t uid) {
    return withClient(__func__, handle, name, uid, [&](const std::string& path) {
        if (SettingsStore::get().read(path) != nullptr) {
            return DPM_ERROR_NOT_PERMITTED;
        }
        SettingsStore::get().write(path, g_variant_new_uint32(uid));
        return DPM_ERROR_NONE;
    });
}

int dpm_admin_deregister_client(device_policy_manager_h handle, const char* name, uid_t uid) {
    return withClient(__func__, handle, name, uid, [&](const std::string& path) {
        if (!isClient(path, uid)) {
            return DPM_ERROR_NOT_PERMITTED;
        }
        host::dpm::endClient(path);
        return DPM_ERROR_NONE;
    });
}
