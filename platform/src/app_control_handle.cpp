#include "app_control_handle.h"

#include "platform-bus.h"

namespace host {

void answerLaunch(GDBusMethodInvocation* invocation, app_control_result_e result, const StringMap& data) {
    platform_bus_application_complete_launch(nullptr, invocation, result, data.toVariant());
}

void cancelLaunch(GDBusMethodInvocation* invocation) {
    answerLaunch(invocation, APP_CONTROL_RESULT_CANCELED, StringMap());
}

AppControls& AppControls::get() {
    static AppControls controls;
    return controls;
}

app_control_h AppControls::add(std::unique_ptr<app_control_s> control) {
    app_control_h handle = control.get();
    controls_.emplace(handle, std::move(control));
    return handle;
}

app_control_s* AppControls::find(app_control_h handle) const {
    const auto found = controls_.find(handle);
    return found != controls_.end() ? found->second.get() : nullptr;
}

bool AppControls::remove(app_control_h handle) {
    return controls_.erase(handle) > 0;
}

} // namespace host
