#include "session/platform_faults.h"

#include <dconf.h>

#include <algorithm>
#include <stdexcept>

#include "device/application_ids.h"
#include "platform_functions.h"

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

} // namespace

std::vector<std::string> platformFunctions() {
    return {functionsOfThePlatform.begin(), functionsOfThePlatform.end()};
}

void setFault(const DeviceSession& session, const PlatformFault& fault) {
    const auto& known = functionsOfThePlatform;
    if (std::find(known.begin(), known.end(), fault.function) == known.end()) {
        throw std::runtime_error("the platform has no function " + fault.function +
                                 "; fault --list names those that it has");
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
    const c::TextListOwner names(dconf_client_list(store.get(), faultsFolder.c_str(), &count));
    std::vector<PlatformFault> faults;
    for (int index = 0; index < count; ++index) {
        PlatformFault fault{names.get()[index]};
        const c::VariantOwner value(dconf_client_read(store.get(), (faultsFolder + fault.function).c_str()));
        if (value != nullptr && g_variant_is_of_type(value.get(), G_VARIANT_TYPE("(ii)")) != FALSE) {
            g_variant_get(value.get(), "(ii)", &fault.code, &fault.nth);
            faults.push_back(fault);
        }
    }
    std::sort(faults.begin(), faults.end(),
              [](const PlatformFault& one, const PlatformFault& other) { return one.function < other.function; });
    return faults;
}

} // namespace deskwatch
