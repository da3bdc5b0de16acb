#include "session/platform_faults.h"

#include <app_common.h>
#include <dconf.h>
#include <dlfcn.h>

#include <stdexcept>
#include <string_view>

#include "device/application_ids.h"

namespace deskwatch {
namespace {

const std::string faultsFolder = std::string("/faults/") + ids::service + "/";

void write(const std::string& path, GVariant* value) {
    const c::ObjectOwner<DConfClient> store(dconf_client_new());
    GError* error = nullptr;
    if (dconf_client_write_sync(store.get(), path.c_str(), value, nullptr, nullptr, &error) == FALSE) {
        throw std::runtime_error("cannot write " + path + ": " + c::takeMessage(error));
    }
}

const void* libraryOf(const void* address) {
    Dl_info info{};
    return dladdr(address, &info) != 0 ? info.dli_fbase : nullptr;
}

/// This program uses the platform's library itself, so the functions of that library are at hand.
bool isPlatformFunction(const std::string& name) {
    const void* function = dlsym(RTLD_DEFAULT, name.c_str());
    const void* known = dlsym(RTLD_DEFAULT, "app_get_id");
    return function != nullptr && known != nullptr && libraryOf(function) == libraryOf(known);
}

} // namespace

void setFault(const DeviceSession& session, const PlatformFault& fault) {
    if (!isPlatformFunction(fault.function)) {
        throw std::runtime_error("the platform has no function " + fault.function +
                                 "; use a name from its headers, such as dpm_password_set_quality");
    }
    write(faultsFolder + fault.function, g_variant_new("(ii)", fault.code, fault.nth));
    session.settleService();
}

void clearFaults(const DeviceSession& session) {
    write(faultsFolder, nullptr);
    session.settleService();
}

std::vector<PlatformFault> readFaults() {
    const c::ObjectOwner<DConfClient> store(dconf_client_new());
    int count = 0;
    char** names = dconf_client_list(store.get(), faultsFolder.c_str(), &count);
    std::vector<PlatformFault> faults;
    for (int index = 0; index < count; ++index) {
        PlatformFault fault{names[index]};
        const c::VariantOwner value(dconf_client_read(store.get(), (faultsFolder + fault.function).c_str()));
        if (value != nullptr && g_variant_is_of_type(value.get(), G_VARIANT_TYPE("(ii)")) != FALSE) {
            g_variant_get(value.get(), "(ii)", &fault.code, &fault.nth);
            faults.push_back(fault);
        }
    }
    g_strfreev(names);
    return faults;
}

} // namespace deskwatch
