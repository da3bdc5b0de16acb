#include <app_common.h>
#include <dpm/security.h>
#include <glib.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "contract_environment.h"
#include "main_loop.h"
#include "platform_owners.h"

namespace contract {

void setUp() {
    char* id = nullptr;
    if (app_get_id(&id) == 0 && taken(id) == applicationId) {
        // nobody sees what an application prints that the framework has started
        const std::string log = taken(app_get_data_path()) + "contract.log";
        if (std::freopen(log.c_str(), "w", stdout) == nullptr) {
            std::perror(log.c_str());
        }
    }
}

void tearDown() {}

bool runUntil(const std::function<bool()>& condition) {
    return runMainLoopUntil(condition);
}

void runPending() {
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
}

bool removePolicyDaemon() {
    return false;
}

bool mayWipe() {
    return false;
}

namespace remote {

bool start() {
    return false;
}

bool setKey(const std::string& /*key*/, int /*value*/) {
    return false;
}

void kill() {}

std::vector<std::string> texts() {
    return {};
}

} // namespace remote
} // namespace contract

extern "C" {

int __real_dpm_security_wipe_data(device_policy_manager_h handle, dpm_security_wipe_type_e type);
int __wrap_dpm_security_wipe_data(device_policy_manager_h handle, dpm_security_wipe_type_e type);

/// The linker puts this in place of the platform's function: no test ever wipes a real device.
int __wrap_dpm_security_wipe_data(device_policy_manager_h handle, dpm_security_wipe_type_e type) {
    return handle == nullptr ? __real_dpm_security_wipe_data(handle, type) : DPM_ERROR_PERMISSION_DENIED;
}

} // extern "C"
