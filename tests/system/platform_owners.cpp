#include "platform_owners.h"

#include <message_port.h>

#include "device/application_ids.h"

namespace system_test {
namespace {

struct BundleRelease {
    void operator()(bundle* message) const { bundle_free(message); }
};

} // namespace

AppControl newAppControl() {
    app_control_h created = nullptr;
    app_control_create(&created);
    return AppControl(created);
}

int sendMessage(const std::vector<std::pair<std::string, std::string>>& entries) {
    const std::unique_ptr<bundle, BundleRelease> message(bundle_create());
    for (const auto& [key, value] : entries) {
        if (const int result = bundle_add_str(message.get(), key.c_str(), value.c_str()); result != 0) {
            return result;
        }
    }
    return message_port_send_message(deskwatch::ids::service, deskwatch::ids::policyPort, message.get());
}

} // namespace system_test
