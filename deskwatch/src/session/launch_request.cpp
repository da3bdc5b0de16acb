#include "session/launch_request.h"

#include <app_control.h>

#include <stdexcept>

#include "device/application_ids.h"

namespace deskwatch {
namespace {

void expectSuccess(int result, const std::string& what) {
    if (result != APP_CONTROL_ERROR_NONE) {
        throw std::runtime_error("cannot " + what + ": the platform answers " + std::to_string(result));
    }
}

} // namespace

void sendLaunchRequest(const std::string& applicationId, const ExtraData& extraData) {
    app_control_h created = nullptr;
    expectSuccess(app_control_create(&created), "make a launch request");
    const c::Owner<app_control_s, app_control_destroy> request(created);
    expectSuccess(app_control_set_app_id(request.get(), applicationId.c_str()), "address a launch request");
    for (const auto& [key, value] : extraData) {
        expectSuccess(app_control_add_extra_data(request.get(), key.c_str(), value.c_str()), "add \"" + key + '"');
    }
    const int result = app_control_send_launch_request(request.get(), nullptr, nullptr);
    if (result == APP_CONTROL_ERROR_APP_NOT_FOUND) {
        throw std::runtime_error(applicationId + " is not an application of the watch");
    }
    expectSuccess(result, "launch " + applicationId);
}

void launchFromHome(const Device& device, const std::string& applicationId, const ExtraData& extraData) {
    const DeviceSession session(device, ids::home);
    sendLaunchRequest(applicationId, extraData);
    session.settle(applicationId);
}

} // namespace deskwatch
