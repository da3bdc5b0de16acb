#ifndef PLATFORM_APP_CONTROL_HANDLE_H
#define PLATFORM_APP_CONTROL_HANDLE_H

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

#include "app_control.h"
#include "c_owners.h"
#include "string_map.h"

namespace host {

/// Answers a launch request.
void answerLaunch(GDBusMethodInvocation* invocation, app_control_result_e result, const StringMap& data);

/// Tells the sender of a launch request that it was cancelled.
void cancelLaunch(GDBusMethodInvocation* invocation);

/// The right to answer a launch request, once. A request that nobody answers is cancelled.
using PendingAnswer = c::Owner<GDBusMethodInvocation, cancelLaunch>;

} // namespace host

/// What an application control handle points at: a request that was made here or received, or a reply.
struct app_control_s {
    std::optional<std::string> appId;
    host::StringMap extraData;
    std::string caller;
    host::PendingAnswer answer; // of a received request whose sender waits
    bool isDelivered = false;   // while the application's callback runs
};

namespace host {

/// All application controls that exist, whether the application or the platform made them. A released handle is no
/// longer found here, so that a late use of it is an error and not a crash.
class AppControls {
public:
    static AppControls& get();

    app_control_h add(std::unique_ptr<app_control_s> control);

    /// The control of a handle, or null.
    app_control_s* find(app_control_h handle) const;

    /// False when there is no such control.
    bool remove(app_control_h handle);

private:
    std::unordered_map<app_control_h, std::unique_ptr<app_control_s>> controls_;
};

} // namespace host

#endif
